#pragma once

// What nobody may use until it is handed out again: marked so that a use of it is seen.

#include <stddef.h>

#include "compiler/types.h"

#if defined(__SANITIZE_ADDRESS__)
#define OXDIAG_HAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OXDIAG_HAS_ADDRESS_SANITIZER 1
#endif
#endif

#if OXDIAG_HAS_ADDRESS_SANITIZER
extern "C" {
void __asan_poison_memory_region(void const volatile* memory, size_t size);
void __asan_unpoison_memory_region(void const volatile* memory, size_t size);
}
#endif

namespace nOXDIAG100 {

// Of each byte of freed memory, in a build without NDEBUG; that of the executive's pool, too.
constexpr u8 kFreedByte = 0xDD;

// From now on nobody reads or writes this memory, until reuseMemory: the address sanitizer, where
// there is one, reports who does. In a build with NDEBUG and without that nothing is done.
inline void retireMemory([[maybe_unused]] void* memory, [[maybe_unused]] size_t size) {
#if !defined(NDEBUG)
  __builtin_memset(memory, kFreedByte, size);
#endif
#if OXDIAG_HAS_ADDRESS_SANITIZER
  __asan_poison_memory_region(memory, size);
#endif
}

// The memory may be used again.
inline void reuseMemory([[maybe_unused]] void* memory, [[maybe_unused]] size_t size) {
#if OXDIAG_HAS_ADDRESS_SANITIZER
  __asan_unpoison_memory_region(memory, size);
#endif
}

}  // namespace nOXDIAG100
