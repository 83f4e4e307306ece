#include "machine/commandLine.h"

namespace {

constexpr u32 kHexadecimal = 16;
constexpr u32 kDecimal = 10;

u32 digitOf(char character) {
  return static_cast<u32>(character <= '9' ? character - '0' : (character | 0x20) - 'a' + 10);
}

}  // namespace

tWords::tWords(char* commandLine) {
  while (count < kWordsMost) {
    while (*commandLine == ' ') *commandLine++ = 0;
    if (*commandLine == 0) return;
    words[count++] = commandLine;
    while (*commandLine != 0 && *commandLine != ' ') ++commandLine;
  }
}

u32 numberOf(char const* word) {
  bool const isHexadecimal = word[0] == '0' && word[1] == 'x';
  u32 const radix = isHexadecimal ? kHexadecimal : kDecimal;
  u32 number = 0;
  for (char const* digit = word + (isHexadecimal ? 2 : 0); *digit != 0; ++digit) {
    number = number * radix + digitOf(*digit);
  }
  return number;
}

u32 bytesOf(char* word) {
  u32 count = 0;
  for (char const* digits = word; digits[0] != 0 && digits[1] != 0; digits += 2) {
    word[count++] = static_cast<char>(digitOf(digits[0]) * kHexadecimal + digitOf(digits[1]));
  }
  word[count] = 0;
  return count;
}
