#include "config/options/numberText.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kNoDigit = 0xFFFFFFFF;  // not below any radix

u32 decimalDigitOf(char character) {
  return character >= '0' && character <= '9' ? static_cast<u32>(character - '0') : kNoDigit;
}

u32 hexadecimalDigitOf(char character) {
  if (character >= 'a' && character <= 'f') return static_cast<u32>(character - 'a') + 10;
  if (character >= 'A' && character <= 'F') return static_cast<u32>(character - 'A') + 10;
  return decimalDigitOf(character);
}

struct tDigitReader {
  char const* position;
  char const* end;

  bool take(char character) {
    if (position == end || *position != character) return false;
    ++position;
    return true;
  }

  // Unsigned arithmetic drops the high bits, which is what is wanted of an over-long number.
  u32 takeDigits(u32 radix, u32 (*digitOf)(char)) {
    u32 number = 0;
    for (; position != end; ++position) {
      u32 const digit = digitOf(*position);
      if (digit >= radix) break;
      number = number * radix + digit;
    }
    return number;
  }
};

}  // namespace

u32 readNumber(char const* text) {
  return text == nullptr ? 0 : readNumber(text, __builtin_strlen(text));
}

u32 readNumber(char const* text, size_t length) {
  if (text == nullptr) return 0;
  tDigitReader reader{text, text + length};
  while (reader.take(' ') || reader.take('\t')) {
  }
  if (reader.take('0') && reader.take('x')) return reader.takeDigits(16, &hexadecimalDigitOf);
  u32 const number = reader.takeDigits(10, &decimalDigitOf);
  return reader.take('#') ? reader.takeDigits(number, &decimalDigitOf) : number;
}

}  // namespace nOXDIAG100
