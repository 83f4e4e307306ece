#pragma once

// Text that threads without a common lock write into one buffer: that its characters mix is known,
// and no reason for the thread sanitizer to speak.

#include "ntos/types.h"

#define OXDIAG_MIXES_TEXT __attribute__((no_sanitize("thread")))

namespace nOXDIAG100 {

// Copies `size` bytes from or to such a buffer.
OXDIAG_MIXES_TEXT inline void copyMixedText(char* to, char const* from, u64 size) {
  for (; size >= sizeof(u64); size -= sizeof(u64)) {
    __builtin_memcpy(to, from, sizeof(u64));
    to += sizeof(u64);
    from += sizeof(u64);
  }
  while (size-- != 0) *to++ = *from++;
}

}  // namespace nOXDIAG100
