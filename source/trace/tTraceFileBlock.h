#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// The bytes that the file destination writes at once. A line feed takes two places, so a block that
// is full, with 512 bytes or more, has at most 513. It is small enough for a kernel stack.
class tTraceFileBlock {
 public:
  tTraceFileBlock() { clear(); }

  void append(char character) {
    if (character == '\n') bytes[length++] = '\r';
    bytes[length++] = character;
  }

  void clear() {
    __builtin_memset(bytes, 0, sizeof(bytes));
    length = 0;
  }

  bool isFull() const { return length >= kFullLength; }
  char const* getBytes() const { return bytes; }
  u32 getLength() const { return length; }

 private:
  static constexpr u32 kFullLength = 512;

  char bytes[kFullLength + 1];
  u32 length;
};

}  // namespace nOXDIAG100
