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
