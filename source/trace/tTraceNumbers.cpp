#include "oxdiagk/tTrace.h"
#include "vexk/number.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;
constexpr u32 kHexadecimal = 16;

// A sign, the ten digits that a radix may have, "#".
constexpr u32 kDecorationSize = 1 + 10 + 1;

// The digits of a radix above 36 go on behind Z, character by character.
char digitOf(u64 value) {
  return static_cast<char>(value < kDecimal ? '0' + value : 'A' + value - kDecimal);
}

u32 writeDigits(u64 value, u32 radix, char* text) {
  if (radix <= kNumberRadixMost) return vexNumberToText(value, radix, text);
  u32 length = 1;
  for (u64 rest = value / radix; rest != 0; rest /= radix) ++length;
  for (u32 index = length; index != 0; value /= radix) text[--index] = digitOf(value % radix);
  return length;
}

u32 writeRadix(u32 radix, char* text) {
  if (radix == kDecimal) return 0;
  if (radix == kHexadecimal) {
    text[0] = '0';
    text[1] = 'x';
    return 2;
  }
  u32 const length = vexNumberToText(radix, kDecimal, text);
  text[length] = '#';
  return length + 1;
}

}  // namespace

void tTrace::appendNumber(u64 magnitude, u32 radix, bool isNegative) {
  if (!isWriting()) return;
  if (radix < kNumberRadixLeast) radix = kDecimal;
  char text[kDecorationSize + kNumberTextSize] = {'-'};
  u32 length = isNegative ? 1 : 0;
  length += writeRadix(radix, text + length);
  length += writeDigits(magnitude, radix, text + length);
  append(text, length);
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
