#pragma once

#include "trace/tFormatArguments.h"

namespace nOXDIAG100 {

// One conversion of a format, such as "%-8.3x", read from what stands behind the percent sign:
// flags, width, precision, at most one length letter, the conversion letter. Nothing is judged
// here; every letter is taken as it comes.
class tFormatConversion {
 public:
  static constexpr u32 kNoPrecision = 0xFFFFFFFF;

  enum tFlag : u32 {
    kBlank = 1 << (' ' - ' '),
    kAlternate = 1 << ('#' - ' '),
    kPlus = 1 << ('+' - ' '),
    kLeft = 1 << ('-' - ' '),  // or a negative width argument
    kZeros = 1 << ('0' - ' '),
  };

  // Moves `format` behind the conversion; at the end of the format it stays on the terminator, and
  // the letter is then NUL. Takes an argument for each "*".
  tFormatConversion(char const*& format, tFormatArguments& arguments) {
    // All characters of the other parts stand in front of the letters; most conversions have none.
    static_assert('9' < 'A' && '.' < 'A' && '*' < 'A');
    if (*format < 'A') readShape(format, arguments);
    letter = *format;
    if (isLength(letter)) {
      length = letter;
      letter = *++format;
    }
    if (letter != 0) ++format;
  }

  bool has(tFlag flag) const { return (flags & flag) != 0; }

  u32 flags = 0;
  u32 width = 0;
  u32 precision = kNoPrecision;
  char length = 0;  // "h", "l", "L" or none
  char letter = 0;

 private:
  // Far more than any output holds: what is larger counts as this.
  static constexpr u32 kLargestCount = 1'000'000;

  static bool isLength(char character) {
    constexpr u64 kLengths = u64{1} << ('h' - 'A') | u64{1} << ('l' - 'A') | u64{1} << ('L' - 'A');
    u32 const place = static_cast<u8>(character) - u32{'A'};
    return place <= 'l' - 'A' && (kLengths >> place & 1) != 0;
  }

  void readShape(char const*& format, tFormatArguments& arguments) {
    while (takeFlag(*format)) ++format;
    readWidth(format, arguments);
    if (*format == '.') readPrecision(++format, arguments);
  }

  bool takeFlag(char character) {
    constexpr u32 kFlags = kBlank | kAlternate | kPlus | kLeft | kZeros;
    u32 const place = static_cast<u8>(character) - u32{' '};
    if (place > '0' - ' ' || (kFlags >> place & 1) == 0) return false;
    flags |= 1 << place;
    return true;
  }

  void readWidth(char const*& format, tFormatArguments& arguments) {
    if (*format != '*') {
      width = readCount(format);
      return;
    }
    ++format;
    i32 const argument = arguments.takeNumber();
    width = static_cast<u32>(argument);
    if (argument >= 0) return;
    flags |= kLeft;
    width = 0 - width;
  }

  void readPrecision(char const*& format, tFormatArguments& arguments) {
    if (*format != '*') {
      precision = readCount(format);
      return;
    }
    ++format;
    i32 const argument = arguments.takeNumber();
    if (argument >= 0) precision = static_cast<u32>(argument);
  }

  static u32 readCount(char const*& format) {
    u32 count = 0;
    for (; *format >= '0' && *format <= '9'; ++format) {
      count = count * 10 + static_cast<u32>(*format - '0');
      if (count > kLargestCount) count = kLargestCount;
    }
    return count;
  }
};

}  // namespace nOXDIAG100
