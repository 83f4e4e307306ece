#pragma once

// VEX_IS_CONSTANT(value): whether the compiler can work out a number. It is a constant itself, so
// it can choose between a value and another one that is constant anyway:
//
//     static constexpr char const* kName = VEX_IS_CONSTANT(name[0]) ? name : "";
//
// With a compiler that cannot tell, nothing counts as constant.
#if defined(__clang__)
// Its __builtin_constant_p also says yes to what a constant must not be made of, such as a const
// pointer that is not constexpr. A list takes an int for a char only if the int is a constant.
#define VEX_IS_CONSTANT(value)                 \
  ([]<class tNarrow>(tNarrow) {                \
    return requires {                          \
      tNarrow{static_cast<int>((value) != 0)}; \
    };                                         \
  }('\0'))
#elif defined(__GNUC__)
#define VEX_IS_CONSTANT(value) __builtin_constant_p(value)
#else
#define VEX_IS_CONSTANT(value) false
#endif

// VEX_KNOWS_LENGTH(text): whether the compiler knows, where this is compiled into, how long the
// text is up to its terminator, as it does of a literal that is given to an inline function; then
// VEX_KNOWN_LENGTH(text) is that. It may always say no, as it does without optimisation.
#if defined(__clang__) || defined(__GNUC__)
#define VEX_KNOWS_LENGTH(text) ((text) != nullptr && __builtin_constant_p(__builtin_strlen(text)))
#define VEX_KNOWN_LENGTH(text) __builtin_strlen(text)
#else
#define VEX_KNOWS_LENGTH(text) false
#define VEX_KNOWN_LENGTH(text) 0
#endif
