#pragma once

// The few language helpers that the containers need: moving, swapping, and building objects in
// storage that is already there. Nothing here allocates or fails; any IRQL, any thread.

#include "compiler/compiler.h"
#include "compiler/types.h"

namespace _STL {

template <class T>
struct remove_reference {
  using type = T;
};
template <class T>
struct remove_reference<T&> {
  using type = T;
};
template <class T>
struct remove_reference<T&&> {
  using type = T;
};
template <class T>
using remove_reference_t = typename remove_reference<T>::type;

// Chooses First when Condition holds, else Second.
template <bool Condition, class First, class Second>
struct conditional {
  using type = First;
};
template <class First, class Second>
struct conditional<false, First, Second> {
  using type = Second;
};
template <bool Condition, class First, class Second>
using conditional_t = typename conditional<Condition, First, Second>::type;

// A value of type T inside an unevaluated expression; has no definition.
template <class T>
T&& declval() noexcept;

// Marks `value` as one whose content may be taken.
template <class T>
constexpr remove_reference_t<T>&& move(T&& value) noexcept {
  return static_cast<remove_reference_t<T>&&>(value);
}

// Passes an argument on as what the caller gave: an lvalue or an rvalue.
template <class T>
constexpr T&& forward(remove_reference_t<T>& value) noexcept {
  return static_cast<T&&>(value);
}
template <class T>
constexpr T&& forward(remove_reference_t<T>&& value) noexcept {
  return static_cast<T&&>(value);
}

// True when a T can be relocated without a failure: it has a move constructor, or a copy
// constructor that cannot fail, and says so with noexcept. Containers demand this of elements.
template <class T>
concept relocatable = noexcept(T(declval<T&&>())) && noexcept(declval<T&>().~T());

// Exchanges two values by moving.
template <class T>
constexpr void swap(T& first, T& second) noexcept {
  static_assert(relocatable<T>, "swapping must not be able to fail");
  T held(_STL::move(first));
  first = _STL::move(second);
  second = _STL::move(held);
}

// Order of keys by their own operator<. For pointers that is the order of addresses: a map of texts
// by pointer needs an order of its own.
template <class T>
struct less {
  constexpr bool operator()(T const& left, T const& right) const noexcept { return left < right; }
};

// Tag of the placement form below, which stays apart from any other placement form of a program.
struct placement {};

}  // namespace _STL

COMPILER_RETURNS_NONNULL inline void* operator new(size_t, _STL::placement, void* where) noexcept {
  return where;
}

namespace _STL {

// Builds a T at `where`, raw storage of the right size and alignment.
template <class T, class... Arguments>
T* construct(T* where, Arguments&&... arguments) noexcept {
  return ::new (placement{}, static_cast<void*>(where)) T(_STL::forward<Arguments>(arguments)...);
}

// Ends the life of the object at `where`; the storage stays.
template <class T>
void destroy(T* where) noexcept {
  where->~T();
}

// Ends the lives of `count` objects from `first` on.
template <class T>
void destroy(T* first, size_t count) noexcept {
  for (size_t i = 0; i < count; ++i) {
    _STL::destroy(first + i);
  }
}

// Moves `count` objects from `source` into raw storage at `target` and leaves raw storage at
// `source`. The ranges may overlap in either direction.
template <class T>
void relocate(T* target, T* source, size_t count) noexcept {
  static_assert(relocatable<T>, "an element needs a noexcept move constructor");
  if (count == 0 || target == source) {
    return;
  }
  if constexpr (nCompiler::kIsTriviallyCopyable<T>) {
    nCompiler::moveBytes(static_cast<void*>(target), static_cast<void const*>(source),
                         count * sizeof(T));
  } else {
    for (size_t i = 0; i < count; ++i) {
      size_t const at = target < source ? i : count - 1 - i;
      _STL::construct(target + at, _STL::move(source[at]));
      _STL::destroy(source + at);
    }
  }
}

}  // namespace _STL
