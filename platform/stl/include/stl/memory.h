#pragma once

// What the containers ask of the platform below them: one function that gives memory, one that
// takes it back. The platform layer defines both; a test program may define its own.

#include "compiler/types.h"
#include "stl/linkage.h"

// The memory is exhausted.
constexpr i32 kStatusOutOfMemory = -50352;

// Returns a block of at least `size` bytes, aligned to 16; size 0 gives a block of its own too.
//
// `flags` says where the block comes from: 0 = paged scratch memory (IRQL <= APC_LEVEL),
// 4 = non-paged long-lived memory (IRQL <= DISPATCH_LEVEL). Other values are reserved.
// On failure the result is null and `status` becomes kStatusOutOfMemory; the content of a block is
// not initialised. A negative `status` on entry is an earlier error: it is kept, nothing is
// allocated and the result is null. Never throws, never stops the program. Any thread may call.
STL_PLATFORM_API void* _memNewUsingCRT(size_t size, u32 flags, i32& status) noexcept;

// Gives a block of _memNewUsingCRT back, whatever its flags were; null does nothing. IRQL as for
// the allocation. Any thread may call.
STL_PLATFORM_API void _memDelete(void* block) noexcept;

namespace _STL {

// Every container allocates with one flags value, a constant of its type, by default the
// long-lived one. So a container in paged memory is another type than one in non-paged memory, and
// moving the storage of the one into the other does not compile.
constexpr u32 kMemoryScratch = 0;
constexpr u32 kMemoryLongLived = 4;

// Alignment that the allocator promises, in bytes; no element may need more.
constexpr size_t kMemoryAlignment = 16;

// Raw storage for `count` objects of type T, to be given back with _memDelete. Null when memory is
// exhausted or when the size in bytes cannot be expressed.
template <class T>
T* allocateFor(size_t count, u32 flags) noexcept {
  static_assert(alignof(T) <= kMemoryAlignment, "the allocator aligns to 16 bytes");
  if (count > static_cast<size_t>(PTRDIFF_MAX) / sizeof(T)) {
    return nullptr;
  }
  i32 status = 0;
  return static_cast<T*>(_memNewUsingCRT(count * sizeof(T), flags, status));
}

}  // namespace _STL
