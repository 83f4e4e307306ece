#pragma once

#include <stddef.h>

// Memory that nobody may touch: the address sanitizer, when it is in the program, reports the
// access where it happens. Without it these do nothing.

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

// For the few functions that look at such memory.
#define NTOSHOST_SEES_POISON __attribute__((no_sanitize("address"), noinline))

namespace ntoshost {

inline void poison(void* address, size_t size) {
  ASAN_POISON_MEMORY_REGION(address, size);
}
inline void unpoison(void* address, size_t size) {
  ASAN_UNPOISON_MEMORY_REGION(address, size);
}

}  // namespace ntoshost
