#pragma once

#include <stddef.h>

// The checks behind the lines of kernelAbi.h.

namespace abi {

template <size_t... Bytes>
struct Sizes {};

template <class A, class B>
inline constexpr bool kIsSame = false;
template <class A>
inline constexpr bool kIsSame<A, A> = true;

template <class T>
inline constexpr size_t kSize = sizeof(T);
template <>
inline constexpr size_t kSize<void> = 0;

template <class Result, class... Arguments>
Sizes<kSize<Result>, kSize<Arguments>...> sizesOf(Result (*)(Arguments...));
template <class Result, class... Arguments>
Sizes<kSize<Result>, kSize<Arguments>...> sizesOf(Result (*)(Arguments..., ...));

}  // namespace abi

#define ABI_SIZE(type, bytes) static_assert(sizeof(type) == bytes);
#define ABI_FIELD(type, field, offset, bytes)      \
  static_assert(offsetof(type, field) == offset && \
                sizeof(static_cast<type*>(nullptr)->field) == bytes);
#define ABI_VALUE(name, number) \
  static_assert(static_cast<unsigned int>(name) == static_cast<unsigned int>(number));
#define ABI_CALL(name, ...) \
  static_assert(abi::kIsSame<decltype(abi::sizesOf(&name)), abi::Sizes<__VA_ARGS__>>);
