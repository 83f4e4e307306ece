#pragma once

#include "trace/tFormatConversion.h"
#include "vexk/number.h"

namespace nOXDIAG100 {

class tFormatOutput;

// A 32-bit argument as the conversions d, i, u, o, x and X write it:
//
//     blanks  sign or radix prefix  zeros  digits  blanks
class tFormatNumber {
 public:
  tFormatNumber(tFormatConversion const& conversion, i32 argument);

  void write(tFormatOutput& output) const;

 private:
  void writeSign(bool isNegative);
  void writeRadixPrefix();
  void writeDigits(u32 magnitude);
  u32 countZeros() const;

  tFormatConversion const& conversion;
  u32 const radix;
  u32 headLength = 0;
  u32 digitCount = 0;  // none for the value 0: its digit is one of the zeros
  char head[2];        // the sign, or "0x"
  char digits[kNumberTextSize];
};

}  // namespace nOXDIAG100
