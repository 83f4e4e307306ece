#pragma once

// What a compiler knows of a type. All of them have these under the same names, which the traits of
// the C++ library stand on; that library is not there in every build.

namespace nCompiler {

template <class T>
inline constexpr bool kIsTrivial = __is_trivial(T);

template <class T>
inline constexpr bool kIsTriviallyCopyable = __is_trivially_copyable(T);

}  // namespace nCompiler
