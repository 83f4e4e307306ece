#pragma once

// A doubly linked list, closed to a ring by a link in the list itself.
//
//     _STL::list<u32> handles;
//     if (!handles.push_back(handle)) { ... memory is exhausted, handles is as it was ... }
//     handles.remove(handle);

#include "stl/failure_state.h"
#include "stl/memory.h"
#include "stl/utility.h"

namespace _STL {

// Elements of type T, each in a node of its own from _memNewUsingCRT with the flags value `Flags`.
// An empty list holds no memory. Elements never move: pointers and iterators to one are good until
// that element is taken out, also when the list is moved or swapped (only end() stays behind).
//
// Elements: T is destructible and has a noexcept move constructor; a T whose copy can fail has a
// `hasFailed` function, see `reports_failure`. A failed element counts as exhausted memory.
// Failure: an operation that needs memory returns true when it was done. On exhausted memory it
// returns false, leaves the old content untouched and makes hasFailed true (see
// stl/failure_state.h). Copy construction and copy assignment tell by hasFailed alone; after a
// failed copy construction the list is empty.
// IRQL <= DISPATCH_LEVEL in long-lived memory, <= APC_LEVEL in scratch memory, as far as the
// elements allow. Threads that share a list, one of them writing, must lock.
template <class T, u32 Flags = kMemoryLongLived>
class list : public failure_state {
  struct link {
    link* next;
    link* previous;
  };

  struct node : link {
    explicit node(T&& value) noexcept : link(), item(_STL::move(value)) {}
    T item;
  };

  // A position: an element, or the end behind the last one. Item is T or T const.
  template <class Item>
  class position {
   public:
    constexpr position() noexcept = default;

    // The element; not for the end.
    Item& operator*() const noexcept { return static_cast<node*>(link_)->item; }
    Item* operator->() const noexcept { return &**this; }

    // One element on or back; the end lies between the last and the first.
    position& operator++() noexcept {
      link_ = link_->next;
      return *this;
    }
    position& operator--() noexcept {
      link_ = link_->previous;
      return *this;
    }

    friend bool operator==(position left, position right) noexcept {
      return left.link_ == right.link_;
    }

   private:
    friend class list;
    explicit position(link* at) noexcept : link_(at) {}

    link* link_ = nullptr;
  };

 public:
  using value_type = T;
  using iterator = position<T>;
  using const_iterator = position<T const>;

  constexpr list() noexcept = default;

  // Copies every element; hasFailed tells whether this copy could be made.
  list(list const& other) noexcept;

  // Takes the elements and the remembered failure; `other` is left empty.
  list(list&& other) noexcept : failure_state(_STL::move(other)) { exchangeNodes(other); }
  ~list() { clear(); }

  // Copies every element, or keeps the old ones and remembers the failure.
  list& operator=(list const& other) noexcept;

  // Takes the elements of `other`, which is left empty; adds its remembered failure to the own one.
  list& operator=(list&& other) noexcept;

  // Exchanges content and remembered failures.
  void swap(list& other) noexcept;

  size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }

  // The first and the last element of a list that is not empty.
  T& front() noexcept { return *begin(); }
  T const& front() const noexcept { return *begin(); }
  T& back() noexcept { return *--end(); }
  T const& back() const noexcept { return *--end(); }

  iterator begin() noexcept { return iterator(ring_.next); }
  iterator end() noexcept { return iterator(&ring_); }
  const_iterator begin() const noexcept { return const_iterator(ring_.next); }
  const_iterator end() const noexcept { return const_iterator(const_cast<link*>(&ring_)); }

  // Adds an element at either end. On failure a value given to be moved is untouched.
  bool push_back(T const& value) noexcept { return insert(end(), value); }
  bool push_back(T&& value) noexcept { return insert(end(), _STL::move(value)); }
  bool push_front(T const& value) noexcept { return insert(begin(), value); }
  bool push_front(T&& value) noexcept { return insert(begin(), _STL::move(value)); }

  // Puts an element before `where`. On failure a value given to be moved is untouched.
  bool insert(iterator where, T const& value) noexcept requires relocatable<T>;
  bool insert(iterator where, T&& value) noexcept requires relocatable<T>;

  // Takes out the element at `where`, which is not the end, and returns the position behind it.
  iterator erase(iterator where) noexcept;

  // Takes out every element equal to `value`, which may be one of them, and returns their number.
  size_t remove(T const& value) noexcept;

  // Takes out the first or the last element, if there is one.
  void pop_front() noexcept;
  void pop_back() noexcept;

  // Takes out all elements.
  void clear() noexcept;

 private:
  void exchangeNodes(list& other) noexcept;
  void closeRing(list const& former) noexcept;

  link ring_ = {&ring_, &ring_};  // next is the first element, previous the last
  size_t size_ = 0;
};

template <class T, u32 Flags>
list<T, Flags>::list(list const& other) noexcept : failure_state() {
  for (T const& item : other) {
    if (!push_back(item)) {
      clear();
      return;
    }
  }
}

template <class T, u32 Flags>
list<T, Flags>& list<T, Flags>::operator=(list const& other) noexcept {
  if (this != &other) {
    list copy(other);
    if (copy.hasFailed()) {
      fail();
    } else {
      exchangeNodes(copy);
    }
  }
  return *this;
}

template <class T, u32 Flags>
list<T, Flags>& list<T, Flags>::operator=(list&& other) noexcept {
  list taken(_STL::move(other));
  if (taken.hasFailed()) {
    fail();
  }
  exchangeNodes(taken);
  return *this;
}

template <class T, u32 Flags>
void list<T, Flags>::swap(list& other) noexcept {
  exchangeNodes(other);
  swapFailure(other);
}

template <class T, u32 Flags>
bool list<T, Flags>::insert(iterator where, T const& value) noexcept requires relocatable<T> {
  T copy(value);
  return constructionFailed(copy) ? fail() : insert(where, _STL::move(copy));
}

template <class T, u32 Flags>
bool list<T, Flags>::insert(iterator where, T&& value) noexcept requires relocatable<T> {
  node* const storage = allocateFor<node>(1, Flags);
  if (storage == nullptr) {
    return fail();
  }
  link* const added = _STL::construct(storage, _STL::move(value));
  added->next = where.link_;
  added->previous = where.link_->previous;
  added->previous->next = added;
  added->next->previous = added;
  ++size_;
  return true;
}

template <class T, u32 Flags>
typename list<T, Flags>::iterator list<T, Flags>::erase(iterator where) noexcept {
  link* const taken = where.link_;
  link* const next = taken->next;
  taken->previous->next = next;
  next->previous = taken->previous;
  --size_;
  _STL::destroy(static_cast<node*>(taken));
  _memDelete(taken);
  return iterator(next);
}

template <class T, u32 Flags>
size_t list<T, Flags>::remove(T const& value) noexcept {
  size_t const before = size_;
  iterator own = end();
  for (iterator at = begin(); at != end();) {
    if (!(*at == value)) {
      ++at;
    } else if (&*at == &value) {
      own = at;
      ++at;
    } else {
      at = erase(at);
    }
  }
  // The element that is the argument itself goes last: it was compared with until here.
  if (own != end()) {
    erase(own);
  }
  return before - size_;
}

template <class T, u32 Flags>
void list<T, Flags>::pop_front() noexcept {
  if (!empty()) {
    erase(begin());
  }
}

template <class T, u32 Flags>
void list<T, Flags>::pop_back() noexcept {
  if (!empty()) {
    erase(--end());
  }
}

template <class T, u32 Flags>
void list<T, Flags>::clear() noexcept {
  while (!empty()) {
    erase(begin());
  }
}

template <class T, u32 Flags>
void list<T, Flags>::exchangeNodes(list& other) noexcept {
  _STL::swap(ring_, other.ring_);
  _STL::swap(size_, other.size_);
  closeRing(other);
  other.closeRing(*this);
}

// The outer nodes still point to the link of the list that they came from.
template <class T, u32 Flags>
void list<T, Flags>::closeRing(list const& former) noexcept {
  if (ring_.next == &former.ring_) {
    ring_ = {&ring_, &ring_};
  }
  ring_.next->previous = &ring_;
  ring_.previous->next = &ring_;
}

}  // namespace _STL
