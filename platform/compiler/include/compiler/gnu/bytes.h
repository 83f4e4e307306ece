#pragma once

#include <stddef.h>

namespace nCompiler {

// `size` bytes from one place to another; the two do not overlap, of moveBytes they may.
inline void copyBytes(void* to, void const* from, size_t size) {
  __builtin_memcpy(to, from, size);
}
inline void moveBytes(void* to, void const* from, size_t size) {
  __builtin_memmove(to, from, size);
}

// Makes `size` bytes zero.
inline void clearBytes(void* bytes, size_t size) {
  __builtin_memset(bytes, 0, size);
}

// The characters before the terminator.
inline size_t textLength(char const* text) {
  return __builtin_strlen(text);
}

}  // namespace nCompiler
