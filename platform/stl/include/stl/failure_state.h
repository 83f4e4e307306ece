#pragma once

// How the containers report failure, told once for all of them.
//
// An operation that needs memory returns whether it was done. When it was not, the container keeps
// its old content and remembers the failure until clearFailure: a caller may make many calls and
// ask once at the end.
//
//     _STL::wstring report;
//     report.append(L"slot ");
//     report.append(name);
//     if (report.hasFailed()) { ... a piece is missing ... }

#include "compiler/types.h"
#include "stl/utility.h"

namespace _STL {

// Base of every container: the remembered failure. It belongs to the object, not to its content:
// a copy starts without a failure of its own, an assignment keeps what the target remembers. Moving
// hands the object on under another name and takes the failure along, so that a container returned
// from a function still tells what went wrong inside; the source is left without one.
class failure_state {
 public:
  // True when an operation on this object has failed since its construction or since clearFailure.
  // A successful operation does not change it. Any IRQL.
  constexpr bool hasFailed() const noexcept { return failed_; }

  // Forgets earlier failures. Any IRQL.
  constexpr void clearFailure() noexcept { failed_ = false; }

 protected:
  constexpr failure_state() noexcept = default;
  constexpr failure_state(failure_state const&) noexcept {}
  constexpr failure_state(failure_state&& other) noexcept : failed_(other.failed_) {
    other.failed_ = false;
  }
  ~failure_state() = default;
  failure_state& operator=(failure_state const&) = delete;

  // Remembers a failure; always false, so that an operation can end with `return fail();`.
  constexpr bool fail() noexcept {
    failed_ = true;
    return false;
  }

  constexpr void swapFailure(failure_state& other) noexcept { _STL::swap(failed_, other.failed_); }

 private:
  bool failed_ = false;
};

// A type whose construction can fail says so with `bool hasFailed() const`. The containers here do,
// and any other class can join by having this one function: a container asks every element that it
// has just built or copied, and takes a true answer as exhausted memory, drops the element and
// keeps its old content. Types without the function are taken as ones that cannot fail. The answer
// of a fresh copy must tell about that copy alone, not about failures of its source.
template <class T>
concept reports_failure = requires(T const& value) {
  static_cast<bool>(value.hasFailed());
};

// True when `fresh`, just built or copied, is not what it should be.
template <class T>
constexpr bool constructionFailed([[maybe_unused]] T const& fresh) noexcept {
  if constexpr (reports_failure<T>) {
    return fresh.hasFailed();
  } else {
    return false;
  }
}

}  // namespace _STL
