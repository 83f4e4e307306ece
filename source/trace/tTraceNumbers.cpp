#include "oxdiagk/tTrace.h"
#include "vexk/number.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;
constexpr u32 kHexadecimal = 16;

// A sign, "36#" or "0x", and the digits.
constexpr u32 kDecorationSize = 4;

bool isRadix(u32 radix) {
  return radix >= kNumberRadixLeast && radix <= kNumberRadixMost;
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
  if (!isRadix(radix)) radix = kDecimal;
  char text[kDecorationSize + kNumberTextSize] = {'-'};
  u32 length = isNegative ? 1 : 0;
  length += writeRadix(radix, text + length);
  length += vexNumberToText(magnitude, radix, text + length);
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
