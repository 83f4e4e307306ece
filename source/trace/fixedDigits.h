#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// Writes the last `width` digits of a number in radix 10 or 16 to `to`, with leading zeros and
// capital letters. Returns the place behind them.
inline char* writeFixedDigits(u64 value, u32 radix, u32 width, char* to) {
  for (u32 index = width; index-- > 0; value /= radix) {
    to[index] = "0123456789ABCDEF"[value % radix];
  }
  return to + width;
}

}  // namespace nOXDIAG100
