#pragma once

// A buffer for wide text that knows what was written into it, and the comparison of wide texts.

#include "ntos/types.h"

// Whether the first `length` characters are the same, terminators or not.
inline bool hasCharacters(wchar_t const* seen, wchar_t const* wanted, size_t length) {
  return seen != nullptr && __builtin_memcmp(seen, wanted, length * sizeof(wchar_t)) == 0;
}

// Whether both texts are the same, up to their terminators.
inline bool isSameWideText(wchar_t const* seen, wchar_t const* wanted) {
  if (seen == nullptr) return false;
  while (*seen != 0 && *seen == *wanted) {
    ++seen;
    ++wanted;
  }
  return *seen == *wanted;
}

struct tWideBuffer {
  static constexpr size_t kLength = 16;  // characters
  static constexpr wchar_t kUntouched = L'#';

  tWideBuffer() { clear(); }

  // Whether the text is this and nothing behind it was written; clears the buffer for the next.
  bool holds(wchar_t const* wanted) {
    bool isSame = isSameWideText(text, wanted);
    size_t length = 0;
    while (wanted[length] != 0) ++length;
    for (size_t index = length + 1; index < kLength; ++index) {
      isSame = isSame && text[index] == kUntouched;
    }
    clear();
    return isSame;
  }

  bool isUntouched() const {
    for (wchar_t each : text) {
      if (each != kUntouched) return false;
    }
    return true;
  }

  void clear() {
    for (wchar_t& each : text) each = kUntouched;
  }

  wchar_t text[kLength];
};
