#include "conformance/valueText.h"

namespace oxt {

void tValueText::append(char const* text) {
  while (*text != '\0' && length < kSize - 1) buffer[length++] = *text++;
  buffer[length] = '\0';
}

void tValueText::appendUnsigned(unsigned long long value) {
  appendDigits(value, 10);
}

void tValueText::appendSigned(long long value) {
  if (value < 0) append("-");
  auto const magnitude = static_cast<unsigned long long>(value);
  appendDigits(value < 0 ? 0 - magnitude : magnitude, 10);
}

void tValueText::appendAddress(void const* address) {
  append("0x");
  appendDigits(reinterpret_cast<unsigned long long>(address), 16);
}

void tValueText::appendDigits(unsigned long long value, unsigned radix) {
  char digits[21];  // the longest 64-bit number and its terminator
  char* first = digits + sizeof(digits) - 1;
  *first = '\0';
  do {
    *--first = "0123456789ABCDEF"[value % radix];
    value /= radix;
  } while (value != 0);
  append(first);
}

void describe(tValueText& text, bool value) {
  text.append(value ? "true" : "false");
}

void describe(tValueText& text, char const* value) {
  if (value == nullptr) {
    text.append("null");
    return;
  }
  text.append("\"");
  text.append(value);
  text.append("\"");
}

void describe(tValueText& text, void const* value) {
  text.appendAddress(value);
}

void describe(tValueText& text, decltype(nullptr) /*value*/) {
  text.append("null");
}

}  // namespace oxt
