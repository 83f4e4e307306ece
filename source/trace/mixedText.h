#pragma once

// Text that threads without a common lock write into one buffer: that its characters mix is known,
// and no reason for the thread sanitizer to speak.

#include "ntos/types.h"

#define OXDIAG_MIXES_TEXT __attribute__((no_sanitize("thread")))

namespace nOXDIAG100 {

// Copies `size` bytes from or to such a buffer.
OXDIAG_MIXES_TEXT inline void copyMixedText(char* to, char const* from, u64 size) {
  constexpr u64 kWord = sizeof(u64);
  u64 done = 0;
  for (; done + kWord <= size; done += kWord) __builtin_memcpy(to + done, from + done, kWord);
  if (done == size) return;
  if (size > kWord) {
    // The last word lies in part upon the one before.
    __builtin_memcpy(to + size - kWord, from + size - kWord, kWord);
  } else {
    for (; done < size; ++done) to[done] = from[done];
  }
}

}  // namespace nOXDIAG100
