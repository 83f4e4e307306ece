#pragma once

// What a compiler knows of a type, and of who runs a function. All of them have these under the
// same names, which the C++ library stands on; that library is not there in every build.

namespace nCompiler {

template <class T>
inline constexpr bool kIsTrivial = __is_trivial(T);

template <class T>
inline constexpr bool kIsTriviallyCopyable = __is_trivially_copyable(T);

// Whether the compiler itself runs the function, to make a constant.
constexpr bool isMakingConstant() {
  return __builtin_is_constant_evaluated();
}

}  // namespace nCompiler
