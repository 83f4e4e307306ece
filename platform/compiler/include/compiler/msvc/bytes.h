#pragma once

#include <string.h>

namespace nCompiler {

// `size` bytes from one place to another; the two do not overlap, of moveBytes they may.
inline void copyBytes(void* to, void const* from, size_t size) {
  memcpy(to, from, size);
}
inline void moveBytes(void* to, void const* from, size_t size) {
  memmove(to, from, size);
}

// Makes `size` bytes zero.
inline void clearBytes(void* bytes, size_t size) {
  memset(bytes, 0, size);
}

// The characters before the terminator.
inline size_t textLength(char const* text) {
  return strlen(text);
}

}  // namespace nCompiler
