#pragma once

// Placement new. No library header declares it on the targets without a C++ library.
#include <stddef.h>

inline void* operator new(size_t, void* where) noexcept {
  return where;
}
inline void* operator new[](size_t, void* where) noexcept {
  return where;
}
inline void operator delete(void*, void*) noexcept {
}
inline void operator delete[](void*, void*) noexcept {
}
