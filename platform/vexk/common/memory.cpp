#include "vexk/memory.h"

#include "ntos/pool.h"

namespace {
constexpr u32 kPoolTag = ntosPoolTag("vexm");
}

void* _memNewUsingCRT(size_t size, u32 flags, i32& status) noexcept {
  if (status < 0) return nullptr;
  POOL_TYPE const pool = flags == kMemScratch ? PagedPool : NonPagedPoolNx;
  // The pool has no blocks of size 0.
  void* block = ExAllocatePoolWithTag(pool, size == 0 ? 1 : size, kPoolTag);
  if (block == nullptr) status = kStatusOutOfMemory;
  return block;
}

void _memDelete(void* block) noexcept {
  if (block != nullptr) ExFreePoolWithTag(block, kPoolTag);
}
