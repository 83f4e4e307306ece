#include "trace/tFormatConversion.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;

// Far more than any output holds: what is larger counts as this.
constexpr u32 kLargestCount = 1'000'000;

u32 readDigits(char const*& format) {
  u32 count = 0;
  for (; *format >= '0' && *format <= '9'; ++format) {
    count = count * kDecimal + static_cast<u32>(*format - '0');
    if (count > kLargestCount) count = kLargestCount;
  }
  return count;
}

}  // namespace

tFormatConversion::tFormatConversion(char const*& format, tFormatArguments& arguments) {
  // All characters of the other parts stand in front of the letters; most conversions have none.
  static_assert('9' < 'A' && '.' < 'A' && '*' < 'A');
  if (*format < 'A') readShape(format, arguments);
  if (*format == 'h' || *format == 'l' || *format == 'L') length = *format++;
  letter = *format;
  if (letter != 0) ++format;
}

void tFormatConversion::readShape(char const*& format, tFormatArguments& arguments) {
  while (takeFlag(*format)) ++format;
  readWidth(format, arguments);
  readPrecision(format, arguments);
}

bool tFormatConversion::takeFlag(char flag) {
  switch (flag) {
    case '-':
      return isLeft = true;
    case '+':
      return hasPlus = true;
    case ' ':
      return hasBlank = true;
    case '#':
      return isAlternate = true;
    case '0':
      return hasZeros = true;
    default:
      return false;
  }
}

void tFormatConversion::readWidth(char const*& format, tFormatArguments& arguments) {
  if (*format != '*') {
    width = readDigits(format);
    return;
  }
  ++format;
  i32 const argument = arguments.takeNumber();
  width = static_cast<u32>(argument);
  if (argument >= 0) return;
  isLeft = true;
  width = 0 - width;
}

void tFormatConversion::readPrecision(char const*& format, tFormatArguments& arguments) {
  if (*format != '.') return;
  ++format;
  if (*format != '*') {
    precision = readDigits(format);
    return;
  }
  ++format;
  i32 const argument = arguments.takeNumber();
  if (argument >= 0) precision = static_cast<u32>(argument);
}

}  // namespace nOXDIAG100
