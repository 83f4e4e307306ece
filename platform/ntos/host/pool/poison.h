#pragma once

#include <stddef.h>

// Memory that nobody may touch: the address sanitizer, when it is in the program, reports the
// access where it happens. Without it these do nothing. The executive itself may have been built
// without the sanitizer.

extern "C" {
[[gnu::weak]] void __asan_poison_memory_region(void const volatile* address, size_t size);
[[gnu::weak]] void __asan_unpoison_memory_region(void const volatile* address, size_t size);
}

// For the few functions that look at such memory.
#define NTOSHOST_SEES_POISON __attribute__((no_sanitize("address"), noinline))

namespace ntoshost {

inline void poison(void* address, size_t size) {
  if (__asan_poison_memory_region != nullptr) __asan_poison_memory_region(address, size);
}
inline void unpoison(void* address, size_t size) {
  if (__asan_unpoison_memory_region != nullptr) __asan_unpoison_memory_region(address, size);
}

}  // namespace ntoshost
