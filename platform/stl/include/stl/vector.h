#pragma once

// An array that grows.
//
//     _STL::vector<i32> ids;
//     if (!ids.push_back(12)) { ... memory is exhausted, ids is as it was ... }
//     for (i32 id : ids) { ... }

#include "stl/failure_state.h"
#include "stl/memory.h"
#include "stl/utility.h"

namespace _STL {

// Elements of type T side by side in one block from _memNewUsingCRT with the flags value `Flags`.
// An empty new vector holds no memory.
//
// Elements: T is destructible and has a noexcept move constructor (a copy constructor will do, if
// it is noexcept and cannot fail); anything else does not compile. A T whose copy or default
// construction can fail has a `hasFailed` function, see `reports_failure`; a vector of strings or
// of vectors needs nothing more. A failed element counts as exhausted memory.
// Failure: an operation that needs memory returns true when it was done. On exhausted memory, or a
// size that cannot exist, it returns false, leaves the old content untouched and makes hasFailed
// true (see stl/failure_state.h). Copy construction and copy assignment tell by hasFailed alone;
// after a failed copy construction the vector is empty.
// An element of the vector itself may be given as argument. Indexes beyond the end count as the
// end; counts are cut to what is there.
// Pointers to elements are good until the next operation that is not const.
// IRQL <= DISPATCH_LEVEL in long-lived memory, <= APC_LEVEL in scratch memory, as far as the
// elements allow. Threads that share a vector, one of them writing, must lock.
template <class T, u32 Flags = kMemoryLongLived>
class vector : public failure_state {
  template <class, u32>
  friend class single_vector;

 public:
  using value_type = T;

  constexpr vector() noexcept = default;

  // Copies every element; hasFailed tells whether this copy could be made.
  vector(vector const& other) noexcept : failure_state() { assign(other.items_, other.size_); }

  // Takes the storage and the remembered failure; `other` is left empty.
  vector(vector&& other) noexcept : failure_state(_STL::move(other)) { exchangeStorage(other); }
  ~vector();

  // Copies every element, or keeps the old ones and remembers the failure.
  vector& operator=(vector const& other) noexcept;

  // Takes the storage of `other`, which is left empty; adds its remembered failure to the own one.
  vector& operator=(vector&& other) noexcept;

  // Exchanges content and remembered failures.
  void swap(vector& other) noexcept;

  size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }

  // Number of elements that fit before the next growth.
  size_t capacity() const noexcept { return capacity_; }

  // The largest size that can be asked for.
  static constexpr size_t max_size() noexcept {
    return static_cast<size_t>(PTRDIFF_MAX) / sizeof(T);
  }

  // The element at `index`, which must be below size(); the first and the last element of a vector
  // that is not empty.
  T& operator[](size_t index) noexcept { return items_[index]; }
  T const& operator[](size_t index) const noexcept { return items_[index]; }
  T& front() noexcept { return items_[0]; }
  T const& front() const noexcept { return items_[0]; }
  T& back() noexcept { return items_[size_ - 1]; }
  T const& back() const noexcept { return items_[size_ - 1]; }

  // The elements as an array; null while the vector holds no memory.
  T* data() noexcept { return items_; }
  T const* data() const noexcept { return items_; }
  T* begin() noexcept { return items_; }
  T* end() noexcept { return items_ + size_; }
  T const* begin() const noexcept { return items_; }
  T const* end() const noexcept { return items_ + size_; }

  // Adds an element behind the last one. On failure a value given to be moved is untouched.
  bool push_back(T const& value) noexcept { return insert(size_, value); }
  bool push_back(T&& value) noexcept { return insert(size_, _STL::move(value)); }

  // Puts an element before the one at `index`. On failure a value given to be moved is untouched.
  bool insert(size_t index, T const& value) noexcept requires relocatable<T>;
  bool insert(size_t index, T&& value) noexcept requires relocatable<T>;

  // Replaces the whole content by copies of `count` elements from `values` on, null for none.
  bool assign(T const* values, size_t count) noexcept;

  // Takes out `count` elements from `index` on; later ones move down. Cannot fail.
  void erase(size_t index, size_t count = 1) noexcept;

  // Takes out the last element, if there is one. Cannot fail.
  void pop_back() noexcept { erase(empty() ? 0 : size_ - 1); }

  // Takes out all elements and keeps the storage. Cannot fail.
  void clear() noexcept { erase(0, size_); }

  // Makes room for `capacity` elements in all.
  bool reserve(size_t capacity) noexcept;

  // Makes the vector `size` elements long: cut at the end, or filled up with T().
  bool resize(size_t size) noexcept;

  friend bool operator==(vector const& left, vector const& right) noexcept {
    return left.equals(right);
  }

 private:
  static constexpr size_t kSmallestCapacity = 4;

  bool equals(vector const& other) const noexcept;
  size_t grownCapacity(size_t needed) const noexcept;
  void moveInto(T* fresh, size_t capacity) noexcept;
  void exchangeStorage(vector& other) noexcept;

  T* items_ = nullptr;  // capacity_ elements, the first size_ of them alive
  size_t size_ = 0;
  size_t capacity_ = 0;
};

template <class T, u32 Flags>
vector<T, Flags>::~vector() {
  _STL::destroy(items_, size_);
  _memDelete(items_);
}

template <class T, u32 Flags>
vector<T, Flags>& vector<T, Flags>::operator=(vector const& other) noexcept {
  if (this != &other) {
    assign(other.items_, other.size_);
  }
  return *this;
}

template <class T, u32 Flags>
vector<T, Flags>& vector<T, Flags>::operator=(vector&& other) noexcept {
  vector taken(_STL::move(other));
  if (taken.hasFailed()) {
    fail();
  }
  exchangeStorage(taken);
  return *this;
}

template <class T, u32 Flags>
void vector<T, Flags>::swap(vector& other) noexcept {
  exchangeStorage(other);
  swapFailure(other);
}

template <class T, u32 Flags>
bool vector<T, Flags>::insert(size_t index, T const& value) noexcept requires relocatable<T> {
  T copy(value);
  return constructionFailed(copy) ? fail() : insert(index, _STL::move(copy));
}

template <class T, u32 Flags>
bool vector<T, Flags>::insert(size_t index, T&& value) noexcept requires relocatable<T> {
  bool const grows = size_ == capacity_;
  size_t const capacity = grownCapacity(size_ + 1);
  T* const fresh = grows ? allocateFor<T>(capacity, Flags) : nullptr;
  if (grows && fresh == nullptr) {
    return fail();
  }
  // Out of the way first: `value` may be one of the elements that now move.
  T held(_STL::move(value));
  if (grows) {
    moveInto(fresh, capacity);
  }
  index = index < size_ ? index : size_;
  _STL::relocate(items_ + index + 1, items_ + index, size_ - index);
  _STL::construct(items_ + index, _STL::move(held));
  ++size_;
  return true;
}

template <class T, u32 Flags>
bool vector<T, Flags>::assign(T const* values, size_t count) noexcept {
  vector copies;
  size_t const wanted = values == nullptr ? 0 : count;
  if (!copies.reserve(wanted)) {
    return fail();
  }
  while (copies.size_ < wanted) {
    T* const copy = _STL::construct(copies.items_ + copies.size_, values[copies.size_]);
    ++copies.size_;
    if (constructionFailed(*copy)) {
      return fail();
    }
  }
  exchangeStorage(copies);
  return true;
}

template <class T, u32 Flags>
void vector<T, Flags>::erase(size_t index, size_t count) noexcept {
  index = index < size_ ? index : size_;
  count = count < size_ - index ? count : size_ - index;
  _STL::destroy(items_ + index, count);
  _STL::relocate(items_ + index, items_ + index + count, size_ - index - count);
  size_ -= count;
}

template <class T, u32 Flags>
bool vector<T, Flags>::reserve(size_t capacity) noexcept {
  if (capacity <= capacity_) {
    return true;
  }
  T* const fresh = allocateFor<T>(capacity, Flags);
  if (fresh == nullptr) {
    return fail();
  }
  moveInto(fresh, capacity);
  return true;
}

template <class T, u32 Flags>
bool vector<T, Flags>::resize(size_t size) noexcept {
  if (size > capacity_ && !reserve(size > max_size() ? size : grownCapacity(size))) {
    return false;
  }
  size_t const before = size_;
  while (size_ < size) {
    T* const added = _STL::construct(items_ + size_);
    ++size_;
    if (constructionFailed(*added)) {
      erase(before, size_ - before);
      return fail();
    }
  }
  if (size < size_) {
    erase(size, size_ - size);
  }
  return true;
}

template <class T, u32 Flags>
bool vector<T, Flags>::equals(vector const& other) const noexcept {
  if (size_ != other.size_) {
    return false;
  }
  for (size_t i = 0; i < size_; ++i) {
    if (!(items_[i] == other.items_[i])) {
      return false;
    }
  }
  return true;
}

template <class T, u32 Flags>
size_t vector<T, Flags>::grownCapacity(size_t needed) const noexcept {
  if (needed <= capacity_) {
    return capacity_;
  }
  size_t const doubled = capacity_ > max_size() / 2 ? max_size() : capacity_ * 2;
  size_t const wanted = needed < doubled ? doubled : needed;
  return wanted < kSmallestCapacity ? kSmallestCapacity : wanted;
}

template <class T, u32 Flags>
void vector<T, Flags>::moveInto(T* fresh, size_t capacity) noexcept {
  _STL::relocate(fresh, items_, size_);
  _memDelete(items_);
  items_ = fresh;
  capacity_ = capacity;
}

template <class T, u32 Flags>
void vector<T, Flags>::exchangeStorage(vector& other) noexcept {
  _STL::swap(items_, other.items_);
  _STL::swap(size_, other.size_);
  _STL::swap(capacity_, other.capacity_);
}

}  // namespace _STL
