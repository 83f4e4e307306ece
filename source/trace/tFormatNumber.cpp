#include "trace/tFormatNumber.h"

#include "trace/tFormatOutput.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kOctal = 8;
constexpr u32 kDecimal = 10;
constexpr u32 kHexadecimal = 16;

// Makes letters small and leaves digits as they are.
constexpr char kSmallLetterBit = 0x20;
static_assert(('A' | kSmallLetterBit) == 'a' && ('9' | kSmallLetterBit) == '9');

constexpr u32 lack(u32 wanted, u32 present) {
  return wanted > present ? wanted - present : 0;
}

u32 getRadix(char letter) {
  if (letter == 'o') return kOctal;
  return letter == 'x' || letter == 'X' ? kHexadecimal : kDecimal;
}

i64 getValue(tFormatConversion const& conversion, i32 argument) {
  bool const isHalf = conversion.length == 'h';
  if (conversion.letter == 'd' || conversion.letter == 'i') {
    return isHalf ? static_cast<i16>(argument) : argument;
  }
  return isHalf ? static_cast<u16>(argument) : static_cast<u32>(argument);
}

}  // namespace

tFormatNumber::tFormatNumber(tFormatConversion const& conversion, i32 argument)
    : conversion(conversion), radix(getRadix(conversion.letter)) {
  i64 const value = getValue(conversion, argument);
  if (radix == kDecimal) writeSign(value < 0);
  if (value == 0) return;
  if (radix == kHexadecimal && conversion.isAlternate) writeRadixPrefix();
  writeDigits(static_cast<u32>(value < 0 ? -value : value));
}

void tFormatNumber::write(tFormatOutput& output) const {
  u32 const zeros = countZeros();
  u32 const blanks = lack(conversion.width, headLength + zeros + digitCount);
  if (!conversion.isLeft) output.fill(' ', blanks);
  for (u32 index = 0; index < headLength; ++index) output.put(head[index]);
  output.fill('0', zeros);
  output.putShort(digits, digitCount);
  if (conversion.isLeft) output.fill(' ', blanks);
}

void tFormatNumber::writeSign(bool isNegative) {
  if (isNegative) {
    head[headLength++] = '-';
  } else if (conversion.hasPlus) {
    head[headLength++] = '+';
  } else if (conversion.hasBlank) {
    head[headLength++] = ' ';
  }
}

void tFormatNumber::writeRadixPrefix() {
  head[headLength++] = '0';
  head[headLength++] = conversion.letter;
}

void tFormatNumber::writeDigits(u32 magnitude) {
  digitCount = vexNumberToText(magnitude, radix, digits);
  if (conversion.letter != 'x') return;
  for (u32 index = 0; index < digitCount; ++index) digits[index] |= kSmallLetterBit;
}

u32 tFormatNumber::countZeros() const {
  bool const hasPrecision = conversion.precision != tFormatConversion::kNoPrecision;
  u32 const needed = lack(hasPrecision ? conversion.precision : 1, digitCount);
  // The prefix of octal numbers is a zero among zeros.
  u32 const least = needed == 0 && radix == kOctal && conversion.isAlternate ? 1 : needed;
  bool const fillsWidth = conversion.hasZeros && !hasPrecision && !conversion.isLeft;
  u32 const padding = fillsWidth ? lack(conversion.width, headLength + digitCount) : 0;
  return padding > least ? padding : least;
}

}  // namespace nOXDIAG100
