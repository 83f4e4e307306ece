#pragma once

// Text that grows: `_STL::string` and `_STL::wstring` of stl/string.h.
//
//     _STL::wstring text(L"slot");
//     if (!text.append(L" 12")) { ... memory is exhausted, text is still L"slot" ... }
//     print(text.c_str());

#include "compiler/compiler.h"
#include "stl/failure_state.h"
#include "stl/memory.h"
#include "stl/utility.h"

namespace _STL {

// A sequence of characters of type C, always followed by a terminator, in one block from
// _memNewUsingCRT with the flags value `Flags`. An empty new string holds no memory.
//
// Failure: an operation that needs memory returns true when it was done. On exhausted memory, or a
// length that cannot exist, it returns false, leaves the old content untouched and makes hasFailed
// true (see stl/failure_state.h). Constructors and copy assignment tell by hasFailed alone; after
// a failed construction the string is empty.
// Text arguments: null counts as an empty text. A text may lie inside the string it is given to.
// A length counts characters; NUL characters inside are kept. Without a length a text ends at its
// first NUL.
// Positions beyond the end count as the end; counts are cut to what is there.
// References into the text are good until the next operation that is not const.
// IRQL <= DISPATCH_LEVEL in long-lived memory, <= APC_LEVEL in scratch memory. Threads that share a
// string, one of them writing, must lock.
template <class C, u32 Flags = kMemoryLongLived>
class basic_string : public failure_state {
  template <class, u32>
  friend class borrowed_string;

 public:
  using value_type = C;

  constexpr basic_string() noexcept = default;
  explicit basic_string(C const* text) noexcept { assign(text); }
  basic_string(C const* text, size_t length) noexcept { assign(text, length); }

  // Copies the content; hasFailed tells whether this copy could be made.
  basic_string(basic_string const& other) noexcept : failure_state() { assign(other); }

  // Takes the storage and the remembered failure; `other` is left empty.
  basic_string(basic_string&& other) noexcept : failure_state(_STL::move(other)) {
    exchangeStorage(other);
  }
  ~basic_string() { _memDelete(text_); }

  // Copies the content, or keeps the old content and remembers the failure.
  basic_string& operator=(basic_string const& other) noexcept {
    assign(other);
    return *this;
  }

  // Takes the storage of `other`, which is left empty; adds its remembered failure to the own one.
  basic_string& operator=(basic_string&& other) noexcept;

  // Exchanges content and remembered failures.
  void swap(basic_string& other) noexcept {
    exchangeStorage(other);
    swapFailure(other);
  }

  // The text with its terminator; never null.
  C const* c_str() const noexcept { return text_ == nullptr ? &kTerminator : text_; }
  C const* data() const noexcept { return c_str(); }

  // Number of characters, without the terminator.
  size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }

  // Number of characters that fit before the next growth.
  size_t capacity() const noexcept { return capacity_; }

  // The longest length that can be asked for.
  static constexpr size_t max_size() noexcept {
    return static_cast<size_t>(PTRDIFF_MAX) / sizeof(C) - 1;
  }

  // The character at `index`, which must be below size(). Characters may be changed in place.
  C& operator[](size_t index) noexcept { return text_[index]; }
  C const& operator[](size_t index) const noexcept { return text_[index]; }

  C* begin() noexcept { return text_; }
  C* end() noexcept { return text_ + size_; }
  C const* begin() const noexcept { return text_; }
  C const* end() const noexcept { return text_ + size_; }

  // Adds behind the last character.
  bool append(C const* text) noexcept { return append(text, lengthOf(text)); }
  bool append(C const* text, size_t length) noexcept;
  bool append(basic_string const& other) noexcept { return append(other.text_, other.size_); }
  bool push_back(C character) noexcept { return append(&character, 1); }

  // Replaces the whole text.
  bool assign(C const* text) noexcept { return assign(text, lengthOf(text)); }
  bool assign(C const* text, size_t length) noexcept {
    return size_ == 0 ? append(text, length) : splice(0, size_, text, length);
  }
  bool assign(basic_string const& other) noexcept { return assign(other.text_, other.size_); }

  // Puts the text before the character at `position`.
  bool insert(size_t position, C const* text) noexcept {
    return insert(position, text, lengthOf(text));
  }
  bool insert(size_t position, C const* text, size_t length) noexcept {
    return splice(position, 0, text, length);
  }

  // Takes `count` characters out from `position` on; cannot fail.
  void erase(size_t position, size_t count) noexcept { splice(position, count, nullptr, 0); }

  // Takes all characters out and keeps the storage; cannot fail.
  void clear() noexcept {
    if (text_ != nullptr) setSize(0);
  }

  // Makes room for `capacity` characters in all, so that growth up to there cannot fail.
  bool reserve(size_t capacity) noexcept;

  // Makes the text `size` characters long: cut at the end, or filled up with `fill`.
  bool resize(size_t size, C fill = C()) noexcept;

  // Below, equal to or above zero as this text stands before, equals or stands behind the other in
  // the order of unsigned code units; a text stands before its own continuations.
  i32 compare(C const* text, size_t length) const noexcept;
  i32 compare(C const* text) const noexcept { return compare(text, lengthOf(text)); }
  i32 compare(basic_string const& other) const noexcept {
    return compare(other.text_, other.size_);
  }

  friend bool operator==(basic_string const& left, basic_string const& right) noexcept {
    return left.size_ == right.size_ && left.compare(right) == 0;
  }
  friend bool operator==(basic_string const& left, C const* right) noexcept {
    return left.compare(right) == 0;
  }
  friend bool operator<(basic_string const& left, basic_string const& right) noexcept {
    return left.compare(right) < 0;
  }

 private:
  // Refers to the text of somebody else.
  constexpr basic_string(C* text, size_t size, size_t capacity) noexcept
      : text_(text), size_(size), capacity_(capacity) {}

  static constexpr C kTerminator = C();
  static constexpr size_t kSmallestCapacity = 15;

  static size_t lengthOf(C const* text) noexcept;
  static void copyCharacters(C* target, C const* source, size_t count) noexcept;
  static u32 codeUnit(char character) noexcept { return static_cast<u8>(character); }
  static u32 codeUnit(wchar_t character) noexcept { return character; }

  bool extend(C const* text, size_t length) noexcept;
  bool splice(size_t position, size_t removed, C const* text, size_t length) noexcept;
  bool rebuild(size_t capacity, size_t position, size_t removed, C const* text,
               size_t length) noexcept;
  size_t grownCapacity(size_t needed) const noexcept;
  bool holds(C const* text) const noexcept;
  void setSize(size_t size) noexcept;
  void exchangeStorage(basic_string& other) noexcept;

  C* text_ = nullptr;  // capacity_ + 1 characters, null while there was nothing to hold
  size_t size_ = 0;
  size_t capacity_ = 0;
};

template <class C, u32 Flags>
basic_string<C, Flags>& basic_string<C, Flags>::operator=(basic_string&& other) noexcept {
  basic_string taken(_STL::move(other));
  if (taken.hasFailed()) {
    fail();
  }
  exchangeStorage(taken);
  return *this;
}

template <class C, u32 Flags>
bool basic_string<C, Flags>::reserve(size_t capacity) noexcept {
  if (capacity <= capacity_) {
    return true;
  }
  return capacity > max_size() ? fail() : rebuild(capacity, size_, 0, nullptr, 0);
}

template <class C, u32 Flags>
bool basic_string<C, Flags>::resize(size_t size, C fill) noexcept {
  if (size <= size_) {
    erase(size, size_ - size);
    return true;
  }
  if (size > max_size()) {
    return fail();
  }
  if (size > capacity_ && !reserve(grownCapacity(size))) {
    return false;
  }
  for (size_t i = size_; i < size; ++i) {
    text_[i] = fill;
  }
  setSize(size);
  return true;
}

template <class C, u32 Flags>
i32 basic_string<C, Flags>::compare(C const* text, size_t length) const noexcept {
  if (text == nullptr) {
    length = 0;
  }
  size_t const common = size_ < length ? size_ : length;
  for (size_t i = 0; i < common; ++i) {
    if (text_[i] != text[i]) {
      return codeUnit(text_[i]) < codeUnit(text[i]) ? -1 : 1;
    }
  }
  return size_ == length ? 0 : size_ < length ? -1 : 1;
}

template <class C, u32 Flags>
size_t basic_string<C, Flags>::lengthOf(C const* text) noexcept {
  size_t length = 0;
  while (text != nullptr && text[length] != C()) {
    ++length;
  }
  return length;
}

template <class C, u32 Flags>
void basic_string<C, Flags>::copyCharacters(C* target, C const* source, size_t count) noexcept {
  if (count != 0) {
    nCompiler::moveBytes(target, source, count * sizeof(C));
  }
}

// Most texts are made piece by piece, and most pieces fit.
template <class C, u32 Flags>
bool basic_string<C, Flags>::append(C const* text, size_t length) noexcept {
  if (text == nullptr || length == 0) {
    return true;
  }
  if (length > capacity_ - size_) {
    return extend(text, length);
  }
  copyCharacters(text_ + size_, text, length);
  setSize(size_ + length);
  return true;
}

// Apart, so that a piece that fits does not pay for it.
template <class C, u32 Flags>
COMPILER_STAYS_APART bool basic_string<C, Flags>::extend(C const* text, size_t length) noexcept {
  if (length > max_size() - size_) {
    return fail();
  }
  size_t const capacity = grownCapacity(size_ + length);
  C* const fresh = allocateFor<C>(capacity + 1, Flags);
  if (fresh == nullptr) {
    return fail();
  }
  copyCharacters(fresh, text_, size_);
  copyCharacters(fresh + size_, text, length);
  _memDelete(text_);
  text_ = fresh;
  capacity_ = capacity;
  setSize(size_ + length);
  return true;
}

// Every other change of the text: `removed` characters at `position` give way to the new ones.
template <class C, u32 Flags>
bool basic_string<C, Flags>::splice(size_t position, size_t removed, C const* text,
                                    size_t length) noexcept {
  position = position < size_ ? position : size_;
  removed = removed < size_ - position ? removed : size_ - position;
  length = text == nullptr ? 0 : length;
  if (length > max_size() - (size_ - removed)) {
    return fail();
  }
  size_t const tail = size_ - removed - position;
  size_t const size = position + length + tail;
  // Moving the tail first would change a source that lies in this very text.
  if (size > capacity_ || (length != 0 && tail != 0 && holds(text))) {
    return rebuild(grownCapacity(size), position, removed, text, length);
  }
  if (text_ != nullptr) {
    copyCharacters(text_ + position + length, text_ + position + removed, tail);
    copyCharacters(text_ + position, text, length);
    setSize(size);
  }
  return true;
}

template <class C, u32 Flags>
bool basic_string<C, Flags>::rebuild(size_t capacity, size_t position, size_t removed,
                                     C const* text, size_t length) noexcept {
  C* const fresh = allocateFor<C>(capacity + 1, Flags);
  if (fresh == nullptr) {
    return fail();
  }
  size_t const tail = size_ - removed - position;
  copyCharacters(fresh, text_, position);
  copyCharacters(fresh + position, text, length);
  copyCharacters(fresh + position + length, text_ + position + removed, tail);
  _memDelete(text_);
  text_ = fresh;
  capacity_ = capacity;
  setSize(position + length + tail);
  return true;
}

template <class C, u32 Flags>
size_t basic_string<C, Flags>::grownCapacity(size_t needed) const noexcept {
  if (needed <= capacity_) {
    return capacity_;
  }
  size_t const doubled = capacity_ > max_size() / 2 ? max_size() : capacity_ * 2;
  size_t const wanted = needed < doubled ? doubled : needed;
  return wanted < kSmallestCapacity ? kSmallestCapacity : wanted;
}

template <class C, u32 Flags>
bool basic_string<C, Flags>::holds(C const* text) const noexcept {
  auto const at = reinterpret_cast<uintptr_t>(text);
  auto const first = reinterpret_cast<uintptr_t>(text_);
  return text_ != nullptr && at >= first && at <= first + size_ * sizeof(C);
}

template <class C, u32 Flags>
void basic_string<C, Flags>::setSize(size_t size) noexcept {
  size_ = size;
  text_[size] = C();
}

template <class C, u32 Flags>
void basic_string<C, Flags>::exchangeStorage(basic_string& other) noexcept {
  _STL::swap(text_, other.text_);
  _STL::swap(size_, other.size_);
  _STL::swap(capacity_, other.capacity_);
}

}  // namespace _STL
