#pragma once

#include "ntos/types.h"

// Where a block comes from. Paged memory may be touched at APC_LEVEL and below only. The Nx kind is
// non-paged memory that cannot be executed: the one to ask for. A Windows with memory integrity
// gives no driver memory that can be.
enum POOL_TYPE : i32 { NonPagedPool = 0, PagedPool = 1, NonPagedPoolNx = 512 };

// The tag that shows as the four characters of `text` in pool listings: ntosPoolTag("oxdk").
consteval u32 ntosPoolTag(char const (&text)[5]) {
  u32 tag = 0;
  for (int i = 3; i >= 0; --i) tag = tag << 8 | static_cast<u8>(text[i]);
  return tag;
}

extern "C" {

// Takes `size` bytes (at least 1) from the pool, aligned to 16 bytes and not cleared. `tag` says
// whose block it is (ntosPoolTag), and is not 0. The caller owns the block and gives it back with
// ExFreePoolWithTag. Returns null when the memory is exhausted.
// IRQL: PagedPool <= APC_LEVEL, the others <= DISPATCH_LEVEL. Thread safe.
NTOS_IMPORT void* ExAllocatePoolWithTag(POOL_TYPE type, size_t size, u32 tag);

// Gives a block back. `tag` is the one it was taken with, or 0 for any. `block` is not null.
// IRQL: as for taking a block of its kind. Thread safe.
NTOS_IMPORT void ExFreePoolWithTag(void* block, u32 tag);
}
