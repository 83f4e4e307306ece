#pragma once

// Elements for the container tests: one that counts how many of its kind are alive, one that can
// only be moved, and one that refuses to be copied on demand.

#include "stl/utility.h"

namespace stlElements {

class tCounted {
 public:
  explicit tCounted(i32 value) noexcept : value_(value) { ++alive; }
  tCounted(tCounted const& other) noexcept : value_(other.value_) { ++alive; }
  tCounted(tCounted&& other) noexcept : value_(other.value_) {
    other.value_ = -1;
    ++alive;
  }
  ~tCounted() { --alive; }
  tCounted& operator=(tCounted const&) = delete;

  i32 value() const noexcept { return value_; }
  friend bool operator==(tCounted const& left, tCounted const& right) noexcept {
    return left.value_ == right.value_;
  }

  static inline i32 alive = 0;

 private:
  i32 value_;
};

class tMoveOnly {
 public:
  explicit tMoveOnly(i32 value) noexcept : value_(value) {}
  tMoveOnly(tMoveOnly&& other) noexcept : value_(other.value_) { other.value_ = -1; }
  tMoveOnly& operator=(tMoveOnly&&) = delete;

  i32 value() const noexcept { return value_; }

 private:
  i32 value_;
};

class tRefusing {
 public:
  tRefusing() noexcept : failed_(refuse()) {}
  explicit tRefusing(i32 value) noexcept : value_(value) {}
  tRefusing(tRefusing const& other) noexcept : value_(other.value_), failed_(refuse()) {}
  tRefusing(tRefusing&& other) noexcept = default;
  tRefusing& operator=(tRefusing const&) = delete;

  bool hasFailed() const noexcept { return failed_; }
  i32 value() const noexcept { return value_; }
  friend bool operator<(tRefusing const& left, tRefusing const& right) noexcept {
    return left.value_ < right.value_;
  }

  // The next so many copies and default constructions are good, the one behind them fails; then
  // all are good again. 0 refuses the very next one, a negative number none.
  static inline i32 goodOnes = -1;

 private:
  static bool refuse() noexcept { return goodOnes >= 0 && goodOnes-- == 0; }

  i32 value_ = 0;
  bool failed_ = false;
};

}  // namespace stlElements
