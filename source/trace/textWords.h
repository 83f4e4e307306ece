#pragma once

// Text, eight characters at a time.

#include "ntos/types.h"

// For what threads without a common lock write into one buffer: that its characters mix is known,
// and no reason for the thread sanitizer to speak.
#define OXDIAG_MIXES_TEXT __attribute__((no_sanitize("thread")))

namespace nOXDIAG100 {

// Eight times the character, as one number.
constexpr u64 eightOf(char character) {
  return u64{0x0101010101010101} * static_cast<u8>(character);
}

// Marks the character among eight: the uppermost bit of each byte that is the character, no other.
constexpr u64 markCharacter(u64 word, char character) {
  constexpr u64 kLowerBits = eightOf('\x7F');
  u64 const zeroed = word ^ eightOf(character);
  return ~(((zeroed & kLowerBits) + kLowerBits) | zeroed | kLowerBits);
}

// Copies a text a word at a time, the last one in part upon the one before.
OXDIAG_MIXES_TEXT inline void copyText(char* to, char const* from, u64 length) {
  constexpr u64 kWord = sizeof(u64);
  constexpr u64 kHalf = sizeof(u32);
  if (length >= kWord) {
    u64 const last = length - kWord;
    for (u64 done = 0; done < last; done += kWord) __builtin_memcpy(to + done, from + done, kWord);
    __builtin_memcpy(to + last, from + last, kWord);
  } else if (length >= kHalf) {
    u64 const last = length - kHalf;
    __builtin_memcpy(to, from, kHalf);
    __builtin_memcpy(to + last, from + last, kHalf);
  } else {
    for (u64 done = 0; done < length; ++done) to[done] = from[done];
  }
}

}  // namespace nOXDIAG100
