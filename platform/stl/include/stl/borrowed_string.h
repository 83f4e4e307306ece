#pragma once

// Text of somebody else, as a string.

#include "stl/basic_string.h"

namespace _STL {

// For calls that take a `basic_string const&`: refers to characters that stay where they are, with
// a terminator behind them, as long as this object refers to them. It takes no memory and cannot
// fail; NUL characters inside are kept.
//
//     _STL::borrowed_string<wchar_t> const name(names + start, length);
//     writer.writeWideString(name.get(), status);
//
// Any IRQL at which the text may be read.
template <class C, u32 Flags = kMemoryLongLived>
class borrowed_string {
 public:
  borrowed_string(C const* text, size_t length) noexcept { refer(text, length); }
  borrowed_string(borrowed_string const&) = delete;
  borrowed_string& operator=(borrowed_string const&) = delete;
  ~borrowed_string() {}

  // Refers to another text.
  void refer(C const* text, size_t length) noexcept {
    _STL::construct(&string_, basic_string<C, Flags>(const_cast<C*>(text), length, length));
  }

  basic_string<C, Flags> const& get() const noexcept { return string_; }

 private:
  // Its destructor is never called: it would give the text back.
  union {
    basic_string<C, Flags> string_;
  };
};

}  // namespace _STL
