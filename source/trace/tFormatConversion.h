#pragma once

#include "trace/tFormatArguments.h"

namespace nOXDIAG100 {

// One conversion of a format, such as "%-8.3x", read from what stands behind the percent sign:
// flags, width, precision, at most one length letter, the conversion letter. Nothing is judged
// here; every letter is taken as it comes.
class tFormatConversion {
 public:
  static constexpr u32 kNoPrecision = 0xFFFFFFFF;

  // Moves `format` behind the conversion; at the end of the format it stays on the terminator, and
  // the letter is then NUL. Takes an argument for each "*".
  tFormatConversion(char const*& format, tFormatArguments& arguments);

  bool isLeft = false;       // "-", or a negative width argument
  bool hasPlus = false;      // "+"
  bool hasBlank = false;     // " "
  bool isAlternate = false;  // "#"
  bool hasZeros = false;     // "0"
  u32 width = 0;
  u32 precision = kNoPrecision;
  char length = 0;  // "h", "l", "L" or none
  char letter = 0;

 private:
  void readShape(char const*& format, tFormatArguments& arguments);
  bool takeFlag(char flag);
  void readWidth(char const*& format, tFormatArguments& arguments);
  void readPrecision(char const*& format, tFormatArguments& arguments);
};

}  // namespace nOXDIAG100
