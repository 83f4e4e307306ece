#include "oxdiagk/tTrace.h"
#include "vexk/numberDigits.h"

namespace nOXDIAG100 {
namespace {

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
  vexWriteHexByte(byte, to);
  return to + 2;
}

// A little-endian number shows its last byte first.
template <u32 unit>
char* writeNumber(char* to, u8 const* bytes) {
  for (u32 index = unit; index != 0; --index) to = writeByte(to, bytes[index - 1]);
  return to;
}

char* writeAddress(char* to, u8 const* address) {
  u8 bytes[sizeof(address)];
  __builtin_memcpy(bytes, &address, sizeof(bytes));
  return writeNumber<sizeof(bytes)>(to, bytes);
}

// A group of `unit` bytes of which `present` are there.
char* writeGroup(char* to, u8 const* bytes, u32 present, u32 unit) {
  if (present == unit && unit == 4) return writeNumber<4>(to, bytes);
  if (present == unit && unit == 2) return writeNumber<2>(to, bytes);
  for (u32 index = 0; index < present; ++index) to = writeByte(to, bytes[index]);
  for (u32 index = present; index < unit; ++index) {
    *to++ = 'X';
    *to++ = 'X';
  }
  return to;
}

char* writeGroups(char* to, u8 const* bytes, u32 length, u32 unit) {
  for (u32 offset = 0; offset + unit <= kBytesPerRow; offset += unit) {
    u32 const present = offset < length ? smaller(length - offset, unit) : 0;
    to = writeGroup(to, bytes + offset, present, unit);
    *to++ = ' ';
  }
  return to;
}

template <u32 unit>
char* writeNumbers(char* to, u8 const* bytes) {
  for (u32 offset = 0; offset < kBytesPerRow; offset += unit) {
    to = writeNumber<unit>(to, bytes + offset);
    *to++ = ' ';
  }
  return to;
}

// The same of a row of 16 bytes.
char* writeWholeGroups(char* to, u8 const* bytes, u32 unit) {
  switch (unit) {
    case 1:
      return writeNumbers<1>(to, bytes);
    case 2:
      return writeNumbers<2>(to, bytes);
    case 4:
      return writeNumbers<4>(to, bytes);
    default:
      return writeGroups(to, bytes, kBytesPerRow, unit);
  }
}

char* writeCharacters(char* to, u8 const* bytes, u32 length) {
  for (u32 index = 0; index < length; ++index) {
    bool const isPrintable = bytes[index] >= 0x20 && bytes[index] <= 0x7E;
    *to++ = isPrintable ? static_cast<char>(bytes[index]) : '.';
  }
  return to;
}

// Eight bytes as characters. The highest bit of a byte says what is found out about it.
u64 showBytes(u64 bytes) {
  constexpr u64 kEach = 0x0101010101010101;
  constexpr u64 kHighBits = kEach * 0x80;
  u64 const low = bytes & ~kHighBits;
  u64 const isPrintable = (low + kEach * (0x80 - 0x20)) & ~(low + kEach) & ~bytes & kHighBits;
  u64 const shown = (isPrintable >> 7) * 0xFF;
  return (bytes & shown) | (kEach * '.' & ~shown);
}

// The same of a row of 16 bytes.
char* writeAllCharacters(char* to, u8 const* bytes) {
  u64 words[kBytesPerRow / sizeof(u64)];
  __builtin_memcpy(words, bytes, sizeof(words));
  for (u64& word : words) word = showBytes(word);
  __builtin_memcpy(to, words, sizeof(words));
  return to + sizeof(words);
}

// Writes the line of the first `length` bytes, at most a whole row; returns its end.
char* writeRow(char* to, u8 const* bytes, u32 length, u32 unit) {
  to = writeColon(writeAddress(to, bytes));
  if (length == kBytesPerRow) {
    to = writeColon(writeWholeGroups(to, bytes, unit));
    to = writeAllCharacters(to, bytes);
  } else {
    to = writeColon(writeGroups(to, bytes, length, unit));
    to = writeCharacters(to, bytes, length);
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
    if (isWriting()) {
      parts.buffer.appendLine(text, static_cast<u64>(end - text), parts.slot);
    }
    bytes += count;
    length -= count;
  }
  return *this;
}

tTrace& tTrace::put(void* address, u32 length, u32 unitSize) {
  return put(static_cast<void const*>(address), length, unitSize);
}

}  // namespace nOXDIAG100
