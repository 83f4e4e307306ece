#include "vexk/number.h"

#include "vexk/numberDigits.h"

namespace {

constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
static_assert(sizeof kDigits == kNumberRadixMost + 1);

// 1, 10, 100, ... as far as 64 bits go.
struct tPowersOfTen {
  static constexpr u32 kCount = 20;
  u64 powers[kCount] = {};

  constexpr tPowersOfTen() {
    u64 power = 1;
    for (u64& entry : powers) {
      entry = power;
      power *= kRadixDecimal;
    }
  }
};
constexpr tPowersOfTen kTens;

u32 countBits(u64 value) {
  return 64 - static_cast<u32>(__builtin_clzll(value | 1));
}

u32 countDecimalDigits(u64 value) {
  // 1233 / 4096 is log10(2), near enough for 64 bits.
  u32 const estimate = countBits(value) * 1233 >> 12;
  return estimate + ((value | 1) < kTens.powers[estimate] ? 0 : 1);
}

u32 writeDecimal(u64 value, char* buffer) {
  u32 const length = countDecimalDigits(value);
  vexWriteDecimal(value, buffer + length);
  return length;
}

u32 writeHexadecimal(u64 value, char* buffer) {
  u32 const length = (countBits(value) + 3) / 4;
  vexWriteHexadecimal(value, buffer + length);
  return length;
}

u32 writePowerOfTwo(u64 value, u32 radix, char* buffer) {
  u32 const bits = countBits(radix) - 1;
  u32 const length = (countBits(value) + bits - 1) / bits;
  for (char* at = buffer + length; at != buffer; value >>= bits) {
    *--at = kDigits[value & (radix - 1)];
  }
  return length;
}

u32 writeAnyRadix(u64 value, u32 radix, char* buffer) {
  char text[kNumberTextSize];
  char* const end = text + sizeof text;
  char* begin = end;
  do {
    *--begin = kDigits[value % radix];
    value /= radix;
  } while (value != 0);
  u32 const length = static_cast<u32>(end - begin);
  __builtin_memcpy(buffer, begin, length);
  return length;
}

u32 writeDigits(u64 value, u32 radix, char* buffer) {
  if (radix == kRadixDecimal || radix < kNumberRadixLeast || radix > kNumberRadixMost) {
    return writeDecimal(value, buffer);
  }
  if (radix == kRadixHexadecimal) return writeHexadecimal(value, buffer);
  if ((radix & (radix - 1)) == 0) return writePowerOfTwo(value, radix, buffer);
  return writeAnyRadix(value, radix, buffer);
}

}  // namespace

u32 vexNumberToText(u64 value, u32 radix, char* buffer) {
  u32 const length = writeDigits(value, radix, buffer);
  buffer[length] = '\0';
  return length;
}
