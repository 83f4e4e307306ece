#pragma once

// Numbers as text, for everything in the family that writes one.

#include "compiler/types.h"
#include "vexk/api.h"

// Room for any number in any radix, with its terminator: 64 binary digits.
constexpr u32 kNumberTextSize = 65;

constexpr u32 kRadixOctal = 8;
constexpr u32 kRadixDecimal = 10;
constexpr u32 kRadixHexadecimal = 16;

constexpr u32 kNumberRadixLeast = 2;
constexpr u32 kNumberRadixMost = 36;

// Writes `value` in `radix` to `buffer`, which has room for kNumberTextSize characters: no leading
// zeros, no decoration, digits above 9 as the upper-case letters from A on, 0 as the digit 0, and a
// terminator. Returns the number of digits. A radix outside 2 to 36 counts as 10.
//
// Does not allocate; any IRQL, any thread.
//
//     char text[kNumberTextSize];
//     u32 const length = vexNumberToText(255, kRadixHexadecimal, text);   // "FF", 2
VEX_API u32 vexNumberToText(u64 value, u32 radix, char* buffer);
