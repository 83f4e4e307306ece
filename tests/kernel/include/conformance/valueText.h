#pragma once

// Values as text for a failure message, in a buffer of fixed size. Too much text is cut.

#include "ntos/types.h"

namespace oxt {

class tValueText {
 public:
  void append(char const* text);
  void appendUnsigned(unsigned long long value);
  void appendSigned(long long value);
  void appendAddress(void const* address);

  char const* text() const { return buffer; }

 private:
  void appendDigits(unsigned long long value, unsigned radix);

  static constexpr unsigned kSize = 240;
  char buffer[kSize] = {};
  unsigned length = 0;
};

void describe(tValueText& text, bool value);
void describe(tValueText& text, char const* value);
void describe(tValueText& text, void const* value);
void describe(tValueText& text, decltype(nullptr) value);

template <class T>
requires(__is_integral(T) && !__is_same(T, bool)) void describe(tValueText& text, T value) {
  if constexpr (static_cast<T>(-1) < static_cast<T>(0)) {
    text.appendSigned(value);
  } else {
    text.appendUnsigned(value);
  }
}

template <class T>
requires(__is_enum(T)) void describe(tValueText& text, T value) {
  describe(text, static_cast<__underlying_type(T)>(value));
}

template <class T>
requires(__is_class(T) || __is_union(T)) void describe(tValueText& text, T const& /*value*/) {
  text.append("(an object)");
}

}  // namespace oxt
