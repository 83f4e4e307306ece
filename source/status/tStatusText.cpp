#include "status/tStatusText.h"

#include "vexk/number.h"

namespace nOXDIAG100 {

tStatusText::tStatusText(char* textBuffer, u32 size) : buffer(textBuffer), capacity(size - 1) {
  buffer[capacity] = '\0';
  buffer[0] = '\0';
}

tStatusText& tStatusText::append(char const* text) {
  for (; *text != '\0' && length != capacity; ++text) buffer[length++] = *text;
  buffer[length] = '\0';
  return *this;
}

tStatusText& tStatusText::appendDecimal(i64 value) {
  char digits[kNumberTextSize];
  u64 const magnitude = value < 0 ? u64{0} - static_cast<u64>(value) : static_cast<u64>(value);
  vexNumberToText(magnitude, kRadixDecimal, digits);
  if (value < 0) append("-");
  return append(digits);
}

tStatusText& tStatusText::appendAddress(u64 address) {
  char digits[kNumberTextSize];
  vexNumberToText(address, kRadixHexadecimal, digits);
  return append("0x").append(digits);
}

}  // namespace nOXDIAG100
