#include "tFloorStream.h"

#include "vexk/cpu.h"
#include "vexk/threadUtility.h"

namespace {

constexpr char kHexadecimalDigits[] = "0123456789ABCDEF";
constexpr u32 kBytesPerRow = 16;

// Writes the digits behind one another ending at `end`; returns the first.
char* writeDecimal(u64 value, char* end) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

char* writeHexadecimal(u32 value, char* end) {
  do {
    *--end = kHexadecimalDigits[value & 0xF];
    value >>= 4;
  } while (value != 0);
  return end;
}

// Exactly `digits` digits.
char* fillHexadecimal(u64 value, u32 digits, char* to) {
  for (u32 shift = digits * 4; shift != 0; shift -= 4) {
    *to++ = kHexadecimalDigits[(value >> (shift - 4)) & 0xF];
  }
  return to;
}

char* copy(char* to, char const* from, size_t length) {
  __builtin_memcpy(to, from, length);
  return to + length;
}

// A field behind the first one.
char* addField(char* to, char const* text, size_t length) {
  return copy(copy(to, "--", 2), text, length);
}

char* addNumber(char* to, u64 value) {
  char digits[20];
  char* const end = digits + sizeof(digits);
  char const* const first = writeDecimal(value, end);
  return addField(to, first, static_cast<size_t>(end - first));
}

char* addThread(char* to, u32 thread) {
  char digits[10];
  char* const end = digits + sizeof(digits);
  char* first = writeHexadecimal(thread, end);
  *--first = 'x';
  *--first = '0';
  return addField(to, first, static_cast<size_t>(end - first));
}

// "slot ", the number, " answered".
char* writeAnswer(char* to, u32 slot) {
  char digits[10];
  char* const end = digits + sizeof(digits);
  to = copy(to, "slot ", 5);
  char const* const first = writeDecimal(slot, end);
  to = copy(to, first, static_cast<size_t>(end - first));
  return copy(to, " answered\n", 10);
}

// A prefix of 51 characters with its "] ".
char* writePrefix(char* to) {
  constexpr char kPrefix[] = "[slotbus--118--tRackReader.cpp";
  constexpr size_t kPrefixWidth = 49;
  __builtin_memset(to, '-', kPrefixWidth);
  __builtin_memcpy(to, kPrefix, sizeof(kPrefix) - 1);
  return copy(to + kPrefixWidth, "] ", 2);
}

}  // namespace

void tFloorStream::putLine(u32 verbosity, u32 slot) {
  lineStart = vexReadTimeStampCounter();
  if (enabled && verbosity >= level) {
    char* const to = writeAnswer(writePrefix(buffer), slot);
    *to = '\0';
    destination->put(buffer);
  }
  lineEnd = vexReadTimeStampCounter();
}

void tFloorStream::putFullLine(u32 verbosity, u32 slot) {
  lineStart = vexReadTimeStampCounter();
  if (enabled && verbosity >= level) {
    char* const to = writeAnswer(writeFullPrefix(verbosity), slot);
    *to = '\0';
    destination->put(buffer);
  }
  lineEnd = vexReadTimeStampCounter();
}

char* tFloorStream::writeFullPrefix(u32 verbosity) {
  constexpr size_t kFullWidth = 109;
  __builtin_memset(buffer, '-', kFullWidth);
  char* to = copy(buffer, "[slotbus--1.0.0f1--118--tRackReader.cpp", 39);
  to = addThread(to, tThreadUtility::getCurrentThreadId());
  to = addNumber(to, lineStart);
  to = addNumber(to, lineStart - lineEnd);
  addNumber(to, verbosity);
  return copy(buffer + kFullWidth, "] ", 2);
}

void tFloorStream::enterBlock(u32 verbosity, char const* name) {
  lineStart = vexReadTimeStampCounter();
  if (enabled && verbosity >= level) {
    char* to = indent(writePrefix(buffer));
    to = copy(to, name, __builtin_strlen(name));
    to = copy(to, "; {\n", 4);
    *to = '\0';
    destination->put(buffer);
  }
  ++nesting;
  lineEnd = vexReadTimeStampCounter();
}

void tFloorStream::leaveBlock(u32 verbosity, char const* name) {
  lineStart = vexReadTimeStampCounter();
  --nesting;
  if (enabled && verbosity >= level) {
    char* to = copy(indent(writePrefix(buffer)), "} ", 2);
    to = copy(to, name, __builtin_strlen(name));
    to = copy(to, "\n", 1);
    *to = '\0';
    destination->put(buffer);
  }
  lineEnd = vexReadTimeStampCounter();
}

void tFloorStream::putDecimal(i32 value) {
  char digits[11];
  char* const end = digits + sizeof(digits);
  u32 const magnitude = value < 0 ? 0U - static_cast<u32>(value) : static_cast<u32>(value);
  char* first = writeDecimal(magnitude, end);
  if (value < 0) *--first = '-';
  append(first, static_cast<size_t>(end - first));
}

void tFloorStream::putHexadecimal(i32 value) {
  char digits[11];
  char* const end = digits + sizeof(digits);
  u32 const magnitude = value < 0 ? 0U - static_cast<u32>(value) : static_cast<u32>(value);
  char* first = writeHexadecimal(magnitude, end);
  *--first = 'x';
  *--first = '0';
  if (value < 0) *--first = '-';
  append(first, static_cast<size_t>(end - first));
}

void tFloorStream::putDump(void const* address, u32 length) {
  u8 const* const bytes = static_cast<u8 const*>(address);
  for (u32 row = 0; row < length; row += kBytesPerRow) {
    char* to = fillHexadecimal(reinterpret_cast<u64>(bytes + row), 16, buffer);
    to = copy(to, ": ", 2);
    for (u32 group = 0; group < kBytesPerRow; group += 4) {
      u32 number;
      __builtin_memcpy(&number, bytes + row + group, sizeof(number));
      to = fillHexadecimal(number, 8, to);
      *to++ = ' ';
    }
    to = copy(to, ": ", 2);
    for (u32 index = 0; index < kBytesPerRow; ++index) {
      u8 const byte = bytes[row + index];
      *to++ = byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
    }
    to = copy(to, "\n", 1);
    *to = '\0';
    destination->put(buffer);
  }
}

char* tFloorStream::indent(char* to) const {
  __builtin_memset(to, ' ', 2 * nesting);
  return to + 2 * nesting;
}

void tFloorStream::append(char const* text, size_t length) {
  size_t const room = kBufferSize - 1 - used;
  size_t const first = length < room ? length : room;
  __builtin_memcpy(buffer + used, text, first);
  used += first;
  if (used == kBufferSize - 1) {
    flush();
    __builtin_memcpy(buffer, text + first, length - first);
    used = length - first;
  }
}

void tFloorStream::flush() {
  buffer[used] = '\0';
  destination->put(buffer);
  used = 0;
}
