#pragma once

// Memory of the family. Every object of every module above this layer comes from here, so that an
// exhausted pool is a status code and never a stopped machine.
//
// The two functions are declared in "stl/memory.h":
//
//     void* _memNewUsingCRT(size_t size, u32 flags, i32& status) noexcept;
//     void _memDelete(void* block) noexcept;
//
// An implementation must: align every block to 16 bytes; return a block of its own for size 0;
// return null and allocate nothing when `status` is negative on entry; on failure return null and
// set `status` to kStatusOutOfMemory; leave a status of 0 or a warning alone on success; accept
// _memDelete(nullptr); free blocks of either flags value from any thread; never abort.
// Flags other than kMemScratch and kMemLongLived count as kMemLongLived.
//
// IRQL: kMemScratch <= APC_LEVEL, kMemLongLived <= DISPATCH_LEVEL, for giving back as for taking.

#include "compiler/types.h"
#include "stl/memory.h"

// Where a block comes from.
enum tMemAllocationFlags : u32 {
  kMemScratch = 0,    // paged pool: short-lived, IRQL <= APC_LEVEL
  kMemLongLived = 4,  // non-paged, no-execute pool
};

// Gives a class operators new and delete over the module's memory. They are noexcept, so a new
// expression yields null when memory is exhausted. Put it into the public part of the class:
//
//     class tThing {
//      public:
//       VEX_MODULE_MEMORY
//     };
//
//     tThing* thing = new tThing;
//     if (thing == nullptr) return kStatusOutOfMemory;
#define VEX_MODULE_MEMORY                                   \
  static void* operator new(size_t size) noexcept {         \
    i32 status = 0;                                         \
    return _memNewUsingCRT(size, kMemLongLived, status);    \
  }                                                         \
  static void* operator new[](size_t size) noexcept {       \
    i32 status = 0;                                         \
    return _memNewUsingCRT(size, kMemLongLived, status);    \
  }                                                         \
  static void* operator new(size_t, void* where) noexcept { \
    return where;                                           \
  }                                                         \
  static void operator delete(void* block) noexcept {       \
    _memDelete(block);                                      \
  }                                                         \
  static void operator delete[](void* block) noexcept {     \
    _memDelete(block);                                      \
  }                                                         \
  static void operator delete(void*, void*) noexcept {      \
  }
