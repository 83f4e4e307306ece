#pragma once

#include "trace/tFormatConversion.h"
#include "trace/tFormatOutput.h"
#include "vexk/numberDigits.h"

namespace nOXDIAG100 {

// A 32-bit argument as the conversions d, i, u, o, x and X write it:
//
//     blanks  sign or radix prefix  zeros  digits  blanks
class tFormatNumber {
 public:
  static void write(tFormatOutput& output, tFormatConversion const& conversion, i32 argument) {
    char text[kTextSize];
    char* const end = text + tFormatOutput::kShortSize;
    tHead head;
    char const* const digits = writeDigits(end, head, conversion, argument);
    u32 const count = static_cast<u32>(end - digits);
    u32 const zeros = countZeros(conversion, head.length, count);
    u32 const blanks = lack(conversion.width, head.length + zeros + count);
    bool const isLeft = conversion.has(tFormatConversion::kLeft);
    if (!isLeft) output.fill(' ', blanks);
    for (u32 index = 0; index < head.length; ++index) output.put(head.text[index]);
    output.fill('0', zeros);
    output.putShort(digits, count);
    if (isLeft) output.fill(' ', blanks);
  }

  // The same for conversions of a letter alone.
  static void writeSigned(tFormatOutput& output, i32 value) {
    char text[kTextSize];
    char* const end = text + tFormatOutput::kShortSize;
    char* begin = vexWriteDecimal(magnitudeOf(value), end);
    if (value < 0) *--begin = '-';
    output.putShort(begin, static_cast<u64>(end - begin));
  }

  static void writeUnsigned(tFormatOutput& output, u32 value) {
    char text[kTextSize];
    char* const end = text + tFormatOutput::kShortSize;
    char const* const begin = vexWriteDecimal(value, end);
    output.putShort(begin, static_cast<u64>(end - begin));
  }

 private:
  static constexpr tDigitPairs<16> kSmallPairs{"0123456789abcdef"};

  // The digits in the lower half, and behind them as much as putShort reads.
  static constexpr u32 kTextSize = 2 * tFormatOutput::kShortSize;

  // What stands in front of the digits: a sign, or "0x".
  struct tHead {
    void add(char character) { text[length++] = character; }
    void addSign(tFormatConversion const& conversion) {
      if (conversion.has(tFormatConversion::kPlus)) {
        add('+');
      } else if (conversion.has(tFormatConversion::kBlank)) {
        add(' ');
      }
    }

    char text[2];
    u32 length = 0;
  };

  static constexpr u32 lack(u32 wanted, u32 present) {
    return wanted > present ? wanted - present : 0;
  }

  static u32 magnitudeOf(i32 value) {
    u32 const bits = static_cast<u32>(value);
    return value < 0 ? 0 - bits : bits;
  }

  // Returns where the digits in front of `end` begin. The value 0 has none.
  static char* writeDigits(char* end, tHead& head, tFormatConversion const& conversion,
                           i32 argument) {
    char const letter = conversion.letter;
    bool const isHalf = conversion.length == 'h';
    if (letter == 'd' || letter == 'i') {
      return writeSignedDigits(end, head, conversion,
                               isHalf ? static_cast<i16>(argument) : argument);
    }
    u32 const value = isHalf ? static_cast<u16>(argument) : static_cast<u32>(argument);
    if (letter == 'u') {
      head.addSign(conversion);
      return writeDecimal(end, value);
    }
    if (letter == 'o') return writeOctal(end, value);
    if (value == 0) return end;
    if (conversion.has(tFormatConversion::kAlternate)) {
      head.add('0');
      head.add(letter);
    }
    return vexWriteHexadecimal(value, end, letter == 'x' ? kSmallPairs : kHexadecimalPairs);
  }

  static char* writeSignedDigits(char* end, tHead& head, tFormatConversion const& conversion,
                                 i32 value) {
    if (value < 0) {
      head.add('-');
    } else {
      head.addSign(conversion);
    }
    return writeDecimal(end, magnitudeOf(value));
  }

  static char* writeDecimal(char* end, u32 value) {
    return value == 0 ? end : vexWriteDecimal(value, end);
  }

  static char* writeOctal(char* end, u32 value) {
    for (; value != 0; value >>= 3) *--end = static_cast<char>('0' + (value & 7));
    return end;
  }

  // The digit of the value 0 is one of these zeros, and so is the prefix of octal numbers.
  static u32 countZeros(tFormatConversion const& conversion, u32 headLength, u32 digitCount) {
    bool const hasPrecision = conversion.precision != tFormatConversion::kNoPrecision;
    u32 const needed = lack(hasPrecision ? conversion.precision : 1, digitCount);
    if (conversion.flags == 0) return needed;
    bool const isOctal = conversion.letter == 'o' && conversion.has(tFormatConversion::kAlternate);
    u32 const least = needed == 0 && isOctal ? 1 : needed;
    if (hasPrecision || !conversion.has(tFormatConversion::kZeros) ||
        conversion.has(tFormatConversion::kLeft)) {
      return least;
    }
    u32 const padding = lack(conversion.width, headLength + digitCount);
    return padding > least ? padding : least;
  }
};

}  // namespace nOXDIAG100
