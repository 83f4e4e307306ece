#include "vexk/number.h"

namespace {

constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
static_assert(sizeof kDigits == kNumberRadixMost + 1);

constexpr u32 kDecimal = 10;

// "00" to "99": two decimal digits for one division.
struct tDigitPairs {
  char text[200] = {};

  constexpr tDigitPairs() {
    for (size_t i = 0; i < 100; ++i) {
      text[2 * i] = kDigits[i / 10];
      text[2 * i + 1] = kDigits[i % 10];
    }
  }
};
constexpr tDigitPairs kPairs;

// 1, 10, 100, ... as far as 64 bits go.
struct tPowersOfTen {
  static constexpr u32 kCount = 20;
  u64 powers[kCount] = {};

  constexpr tPowersOfTen() {
    u64 power = 1;
    for (u64& entry : powers) {
      entry = power;
      power *= kDecimal;
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
  char* at = buffer + length;
  while (value >= 100) {
    u64 const rest = value / 100;
    at -= 2;
    __builtin_memcpy(at, kPairs.text + 2 * (value - rest * 100), 2);
    value = rest;
  }
  if (value < 10) {
    buffer[0] = kDigits[value];
  } else {
    __builtin_memcpy(buffer, kPairs.text + 2 * value, 2);
  }
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
  if (radix == kDecimal || radix < kNumberRadixLeast || radix > kNumberRadixMost) {
    return writeDecimal(value, buffer);
  }
  if ((radix & (radix - 1)) == 0) return writePowerOfTwo(value, radix, buffer);
  return writeAnyRadix(value, radix, buffer);
}

}  // namespace

u32 vexNumberToText(u64 value, u32 radix, char* buffer) {
  u32 const length = writeDigits(value, radix, buffer);
  buffer[length] = '\0';
  return length;
}
