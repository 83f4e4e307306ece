#pragma once

// VEX_IS_CONSTANT(value): whether the compiler can work out a number. It is a constant itself, so
// it can choose between a value and another one that is constant anyway:
//
//     static constexpr char const* kName = VEX_IS_CONSTANT(name[0]) ? name : "";
//
// With a compiler that cannot tell, nothing counts as constant.
#if defined(__clang__) || defined(__GNUC__)
#define VEX_IS_CONSTANT(value) __builtin_constant_p(value)
#else
#define VEX_IS_CONSTANT(value) false
#endif
