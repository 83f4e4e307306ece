#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr u32 kBytesPerRow = 16;
constexpr u32 kAddressDigits = 16;

// The address, two times ": ", a group for every byte, the characters and the newline.
constexpr u32 kRowSize = kAddressDigits + 2 + kBytesPerRow * 3 + 2 + kBytesPerRow + 1;

u32 smaller(u32 left, u32 right) {
  return left < right ? left : right;
}

char* writeColon(char* to) {
  *to++ = ':';
  *to++ = ' ';
  return to;
}

char* writeByte(char* to, u8 byte) {
  *to++ = kDigits[byte >> 4];
  *to++ = kDigits[byte & 0xF];
  return to;
}

char* writeAddress(char* to, u8 const* address) {
  u64 const value = reinterpret_cast<u64>(address);
  for (u32 shift = kAddressDigits * 4; shift != 0; shift -= 8) {
    to = writeByte(to, static_cast<u8>(value >> (shift - 8)));
  }
  return to;
}

// A group of `unit` bytes of which `present` are there.
char* writeGroup(char* to, u8 const* bytes, u32 present, u32 unit) {
  if ((unit == 4 || unit == 2) && present == unit) {
    // A little-endian number shows its last byte first.
    for (u32 index = unit; index != 0; --index) to = writeByte(to, bytes[index - 1]);
    return to;
  }
  for (u32 index = 0; index < present; ++index) to = writeByte(to, bytes[index]);
  for (u32 index = present; index < unit; ++index) {
    *to++ = 'X';
    *to++ = 'X';
  }
  return to;
}

// Writes the row of the first `length` bytes, at most a whole row; returns the end of its text.
char* writeRow(char* to, u8 const* bytes, u32 length, u32 unit) {
  to = writeColon(writeAddress(to, bytes));
  for (u32 offset = 0; offset + unit <= kBytesPerRow; offset += unit) {
    u32 const present = offset < length ? smaller(length - offset, unit) : 0;
    to = writeGroup(to, bytes + offset, present, unit);
    *to++ = ' ';
  }
  to = writeColon(to);
  for (u32 index = 0; index < length; ++index) {
    bool const isPrintable = bytes[index] >= 0x20 && bytes[index] <= 0x7E;
    *to++ = isPrintable ? static_cast<char>(bytes[index]) : '.';
  }
  *to++ = '\n';
  return to;
}

}  // namespace

tTrace& tTrace::put(void const* address, u32 length, u32 unitSize) {
  if (!isWriting() || address == nullptr || length == 0) return *this;
  u32 const unit = smaller(smaller(length, unitSize == 0 ? 1 : unitSize), kBytesPerRow);
  u32 const bytesPerRow = kBytesPerRow / unit * unit;
  u8 const* bytes = static_cast<u8 const*>(address);
  while (length != 0) {
    char text[kRowSize];
    u32 const count = smaller(length, bytesPerRow);
    char const* const end = writeRow(text, bytes, count, unit);
    append(text, static_cast<u64>(end - text));
    bytes += count;
    length -= count;
  }
  return *this;
}

tTrace& tTrace::put(void* address, u32 length, u32 unitSize) {
  return put(static_cast<void const*>(address), length, unitSize);
}

}  // namespace nOXDIAG100
