#pragma once

// An array that mostly has one element.
//
//     _STL::single_vector<i32> ids;
//     if (!ids.push_back(12)) { ... }        // takes no memory
//     _STL::vector<i32> const& all = ids.get();

#include "compiler/compiler.h"
#include "stl/vector.h"

namespace _STL {

// A vector that has a place for one element in itself, and takes memory for the second one.
// Elements are plain values, which are copied without memory.
//
// Failures are remembered as those of a vector. Pointers to elements, and what get() returns, are
// good until the next operation that is not const. IRQL <= DISPATCH_LEVEL in long-lived memory,
// <= APC_LEVEL in scratch memory. Threads that share one, one of them writing, must lock.
template <class T, u32 Flags = kMemoryLongLived>
class single_vector {
  static_assert(nCompiler::kIsTriviallyCopyable<T>, "an element is copied without memory");

 public:
  using value_type = T;

  single_vector() noexcept { start(); }

  // Copies every element; hasFailed tells whether this copy could be made.
  single_vector(single_vector const& other) noexcept {
    start();
    assign(other.data(), other.size());
  }
  ~single_vector() { giveBack(); }

  // Copies every element, or keeps the old ones and remembers the failure.
  single_vector& operator=(single_vector const& other) noexcept {
    if (this != &other) assign(other.data(), other.size());
    return *this;
  }

  bool hasFailed() const noexcept { return list_.hasFailed(); }

  size_t size() const noexcept { return list_.size(); }
  bool empty() const noexcept { return list_.empty(); }
  T const* data() const noexcept { return list_.data(); }
  T const* begin() const noexcept { return list_.begin(); }
  T const* end() const noexcept { return list_.end(); }

  // The elements as a vector, which stays this object's.
  vector<T, Flags> const& get() const noexcept { return list_; }

  // Replaces the whole content by copies of `count` elements from `values` on, null for none.
  bool assign(T const* values, size_t count) noexcept;

  // Adds an element behind the last one.
  bool push_back(T const& value) noexcept;

  // Exchanges content and remembered failures.
  void swap(single_vector& other) noexcept;

  friend bool operator==(single_vector const& left, single_vector const& right) noexcept {
    return left.list_ == right.list_;
  }

 private:
  bool isSingle() const noexcept { return list_.items_ == place(); }
  T* place() noexcept { return reinterpret_cast<T*>(place_); }
  T const* place() const noexcept { return reinterpret_cast<T const*>(place_); }

  void start() noexcept {
    _STL::construct(&list_);
    list_.items_ = place();
    list_.capacity_ = 1;
  }
  void giveBack() noexcept {
    if (!isSingle()) _memDelete(list_.items_);
  }
  bool makeRoom(size_t capacity) noexcept;

  // After an exchange with `other`, the place of which holds nothing of this object.
  void leavePlaceOf(single_vector const& other) noexcept {
    if (list_.items_ == other.place()) list_.items_ = place();
  }

  // Its destructor is never called: it would give the place back. The list never grows by itself.
  union {
    vector<T, Flags> list_;
  };
  alignas(T) unsigned char place_[sizeof(T)] = {};
};

template <class T, u32 Flags>
bool single_vector<T, Flags>::assign(T const* values, size_t count) noexcept {
  size_t const wanted = values == nullptr ? 0 : count;
  if (wanted > list_.capacity_ && !makeRoom(wanted)) return false;
  if (wanted == 1) {
    _STL::construct(list_.items_, T(*values));
  } else if (wanted != 0) {
    nCompiler::moveBytes(static_cast<void*>(list_.items_), values, wanted * sizeof(T));
  }
  list_.size_ = wanted;
  return true;
}

template <class T, u32 Flags>
bool single_vector<T, Flags>::push_back(T const& value) noexcept {
  T const copy = value;
  size_t const size = list_.size_ + 1;
  if (size > list_.capacity_ && !makeRoom(list_.grownCapacity(size))) return false;
  _STL::construct(list_.items_ + list_.size_, copy);
  list_.size_ = size;
  return true;
}

template <class T, u32 Flags>
void single_vector<T, Flags>::swap(single_vector& other) noexcept {
  list_.swap(other.list_);
  unsigned char held[sizeof(T)];
  nCompiler::copyBytes(held, place_, sizeof(T));
  nCompiler::copyBytes(place_, other.place_, sizeof(T));
  nCompiler::copyBytes(other.place_, held, sizeof(T));
  leavePlaceOf(other);
  other.leavePlaceOf(*this);
}

template <class T, u32 Flags>
bool single_vector<T, Flags>::makeRoom(size_t capacity) noexcept {
  T* const fresh = allocateFor<T>(capacity, Flags);
  if (fresh == nullptr) return list_.fail();
  _STL::relocate(fresh, list_.items_, list_.size_);
  giveBack();
  list_.items_ = fresh;
  list_.capacity_ = capacity;
  return true;
}

}  // namespace _STL
