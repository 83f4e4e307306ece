#pragma once

// Digits of numbers, two at a time, for what writes many: each function writes backwards from `end`
// and returns where its digits begin. No leading zeros, no terminator; 0 is the digit 0. Nothing
// here allocates; any IRQL, any thread. "vexk/number.h" writes whole texts in any radix.

#include "compiler/compiler.h"
#include "compiler/types.h"

// Every pair of digits of a radix, "00" first.
template <u32 radix>
struct tDigitPairs {
  static constexpr u32 kCount = radix * radix;
  char text[kCount][2] = {};

  explicit constexpr tDigitPairs(char const* digits) {
    for (u32 index = 0; index < kCount; ++index) {
      text[index][0] = digits[index / radix];
      text[index][1] = digits[index % radix];
    }
  }
};
inline constexpr tDigitPairs<10> kDecimalPairs("0123456789");
inline constexpr tDigitPairs<16> kHexadecimalPairs("0123456789ABCDEF");

// Writes the two hexadecimal digits of `byte` to `to`.
inline void vexWriteHexByte(u8 byte, char* to) {
  nCompiler::copyBytes(to, kHexadecimalPairs.text[byte], 2);
}

// At most 20 digits.
inline char* vexWriteDecimal(u64 value, char* end) {
  while (value >= 100) {
    u64 const rest = value / 100;
    end -= 2;
    nCompiler::copyBytes(end, kDecimalPairs.text[value - rest * 100], 2);
    value = rest;
  }
  if (value < 10) {
    *--end = static_cast<char>('0' + value);
    return end;
  }
  end -= 2;
  nCompiler::copyBytes(end, kDecimalPairs.text[value], 2);
  return end;
}

// At most 16 digits; those above 9 are capital letters, or as in the caller's `pairs`.
inline char* vexWriteHexadecimal(u64 value, char* end,
                                 tDigitPairs<16> const& pairs = kHexadecimalPairs) {
  for (; value > 0xFF; value >>= 8) {
    end -= 2;
    nCompiler::copyBytes(end, pairs.text[value & 0xFF], 2);
  }
  if (value <= 0xF) {
    *--end = pairs.text[value][1];
    return end;
  }
  end -= 2;
  nCompiler::copyBytes(end, pairs.text[value], 2);
  return end;
}
