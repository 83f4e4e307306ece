#pragma once

// __builtin_constant_p also says yes here to what a constant must not be made of, such as a const
// pointer that is not constexpr. A list takes an int for a char only if the int is a constant.
#define COMPILER_IS_CONSTANT(value)            \
  ([]<class tNarrow>(tNarrow) {                \
    return requires {                          \
      tNarrow{static_cast<int>((value) != 0)}; \
    };                                         \
  }('\0'))
