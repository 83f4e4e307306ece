#include "oxdiagk/tTrace.h"
#include "vexk/number.h"
#include "vexk/numberDigits.h"

namespace nOXDIAG100 {
namespace {

// A sign, the ten digits that a radix may have, "#", and 64 digits of radix 2.
constexpr u32 kTextSize = 1 + 10 + 1 + 64;

// The digits of a radix above 36 go on behind Z, character by character.
char digitOf(u64 value) {
  return static_cast<char>(value < kRadixDecimal ? '0' + value : 'A' + value - kRadixDecimal);
}

char* writePowerOfTwo(u64 value, u32 bits, char* end) {
  u64 const mask = (u64{1} << bits) - 1;
  do {
    *--end = digitOf(value & mask);
    value >>= bits;
  } while (value != 0);
  return end;
}

// In any radix, with the radix in front. The text grows from its end, as the digits come.
char* writeAny(u64 value, u32 radix, char* end) {
  if ((radix & (radix - 1)) == 0) {
    end = writePowerOfTwo(value, static_cast<u32>(__builtin_ctz(radix)), end);
  } else {
    do {
      *--end = digitOf(value % radix);
      value /= radix;
    } while (value != 0);
  }
  *--end = '#';
  return vexWriteDecimal(radix, end);
}

char* writeNumber(u64 value, u32 radix, char* end) {
  if (radix == kRadixDecimal || radix < kNumberRadixLeast) return vexWriteDecimal(value, end);
  if (radix != kRadixHexadecimal) return writeAny(value, radix, end);
  end = vexWriteHexadecimal(value, end);
  *--end = 'x';
  *--end = '0';
  return end;
}

}  // namespace

void tTrace::appendNumber(u64 magnitude, u32 radix, bool isNegative) {
  if (!isWriting()) return;
  char text[kTextSize];
  char* const end = text + sizeof(text);
  char* begin = writeNumber(magnitude, radix, end);
  if (isNegative) *--begin = '-';
  append(begin, static_cast<u64>(end - begin));
}

void tTrace::appendSigned(i64 value, u32 radix) {
  u64 const bits = static_cast<u64>(value);
  appendNumber(value < 0 ? 0 - bits : bits, radix, value < 0);
}

tTrace& tTrace::put(short value, u32 radix) {
  return put(static_cast<long long>(value), radix);
}

tTrace& tTrace::put(int value, u32 radix) {
  return put(static_cast<long long>(value), radix);
}

tTrace& tTrace::put(long value, u32 radix) {
  return put(static_cast<long long>(value), radix);
}

tTrace& tTrace::put(long long value, u32 radix) {
  appendSigned(value, radix);
  return *this;
}

tTrace& tTrace::put(unsigned short value, u32 radix) {
  return put(static_cast<unsigned long long>(value), radix);
}

tTrace& tTrace::put(unsigned int value, u32 radix) {
  return put(static_cast<unsigned long long>(value), radix);
}

tTrace& tTrace::put(unsigned long value, u32 radix) {
  return put(static_cast<unsigned long long>(value), radix);
}

tTrace& tTrace::put(unsigned long long value, u32 radix) {
  appendNumber(value, radix, false);
  return *this;
}

}  // namespace nOXDIAG100
