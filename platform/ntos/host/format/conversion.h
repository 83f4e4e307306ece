#pragma once

#include <stdarg.h>

#include "ntos/types.h"

namespace ntoshost {

// The arguments of one formatting, taken one after the other with their widths on 64-bit Windows.
class FormatArguments {
 public:
  explicit FormatArguments(va_list list) { va_copy(m_list, list); }
  ~FormatArguments() { va_end(m_list); }
  FormatArguments(FormatArguments const&) = delete;
  FormatArguments& operator=(FormatArguments const&) = delete;

  // The analyzer does not see that the constructor started the list.
  // NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
  i32 nextI32() { return va_arg(m_list, i32); }
  i64 nextI64() { return va_arg(m_list, i64); }
  void const* nextPointer() { return va_arg(m_list, void const*); }
  // NOLINTEND(clang-analyzer-valist.Uninitialized)

 private:
  va_list m_list;
};

// The letters between the precision and the conversion.
enum class ArgumentSize {
  none,
  half,  // h: 16 bits, text of bytes
  wide,  // l, w: 32 bits, UTF-16 text
  word,  // I32
  quad,  // ll, I64, I
};

// One conversion of a format, such as %-8.3x.
struct Conversion {
  bool isLeft = false;
  bool hasPlus = false;
  bool hasBlank = false;
  bool isAlternate = false;
  bool hasZeros = false;
  i32 width = 0;
  i32 precision = -1;  // -1: none given
  ArgumentSize size = ArgumentSize::none;
  char letter = 0;
};

// Reads the conversion that starts behind a percent sign; `format` moves behind it. The character
// that a `*` stands for is taken from the arguments.
template <class Character>
Conversion readConversion(Character const*& format, FormatArguments& arguments);

}  // namespace ntoshost
