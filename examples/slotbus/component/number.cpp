#include "slotbus/component/number.h"

namespace nSLOTBUS100 {
namespace {

constexpr u32 kNoDigit = 0xFF;

u32 readDigit(char character) {
  if (character >= '0' && character <= '9') {
    return static_cast<u32>(character - '0');
  }
  if (character >= 'a' && character <= 'f') {
    return static_cast<u32>(character - 'a') + 10;
  }
  if (character >= 'A' && character <= 'F') {
    return static_cast<u32>(character - 'A') + 10;
  }
  return kNoDigit;
}

tNumberResult readDigits(tTextSpan digits, u32 radix, u64& value) {
  u64 sum = 0;
  bool tooLarge = false;
  for (size_t index = 0; index < digits.getLength(); ++index) {
    u32 const digit = readDigit(digits[index]);
    if (digit >= radix) {
      return tNumberResult::kNotANumber;
    }
    tooLarge = tooLarge || sum > (UINT64_MAX - digit) / radix;
    sum = sum * radix + digit;
  }
  if (tooLarge) {
    return tNumberResult::kTooLarge;
  }
  value = sum;
  return tNumberResult::kDone;
}

}  // namespace

tNumberResult readNumber(tTextSpan text, u64& value) {
  bool const isHexadecimal = text.beginsWith("0x") || text.beginsWith("0X");
  tTextSpan const digits = text.getBehind(isHexadecimal ? 2 : 0);
  if (digits.isEmpty()) {
    return tNumberResult::kNotANumber;
  }
  return readDigits(digits, isHexadecimal ? 16 : 10, value);
}

}  // namespace nSLOTBUS100
