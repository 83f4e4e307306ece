#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// Text that is appended to a buffer as far as that reaches. It is terminated at every moment, and
// the last byte of the buffer is 0 from the start.
class tStatusText {
 public:
  // `size` is at least 1.
  tStatusText(char* textBuffer, u32 size);

  tStatusText& append(char const* text);
  tStatusText& appendDecimal(i64 value);
  tStatusText& appendAddress(u64 address);

  // The buffer behind the text, at least the byte for the terminator.
  char* getRest() const { return buffer + length; }
  u32 getRestSize() const { return capacity - length + 1; }

  bool isFull() const { return length == capacity; }

 private:
  char* buffer;
  u32 capacity;  // characters without the terminator
  u32 length = 0;
};

}  // namespace nOXDIAG100
