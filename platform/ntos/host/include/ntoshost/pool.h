#pragma once

#include "ntos/pool.h"

// What the executive's pool knows about its blocks. Every block has 16 guard bytes on both sides.
// Fresh memory is filled with 0xA5, freed memory with 0xDD and held back for a while, so that a
// second free, a write outside a block and a write after the free stop the program. Under the
// address sanitizer guards and freed memory are poisoned as well. All blocks together have at most
// 1 GiB; a request beyond that gets null.
//
// PagedPool lies on pages of its own, which a thread at DISPATCH_LEVEL or above cannot touch: the
// kernel might have written them to the disk. The program is stopped with the driver, the block and
// the byte, while threads below DISPATCH_LEVEL use the block as before. This takes a processor with
// protection keys and a program without the address or thread sanitizer, see isPagedPoolGuarded.
//
// In the plain executive (ntoshost/strength.h) all this is so for the objects alone that the
// executive makes itself: drivers, devices, requests. Callers' blocks are the C library's there and
// are not counted.

namespace ntoshost {

struct PoolBlock {
  void const* address;
  size_t size;  // bytes, as asked for
  u32 tag;
  POOL_TYPE type;
  u64 serial;  // 1 is the program's first allocation
};

// Blocks that were taken and not given back, and the bytes in them.
u64 outstandingBlocks();
u64 outstandingBytes();

// The same bytes as a kernel's pool counts them, which cuts its blocks in units of 16 bytes and
// puts a head of one unit in front of each.
u64 outstandingFootprint();

// The largest footprint since the last watchFootprint; without one, since the program started.
void watchFootprint();
u64 peakFootprint();

// Calls visit(context, block) for each of them, oldest first. `visit` must not use the pool.
void visitOutstanding(void (*visit)(void* context, PoolBlock const& block), void* context);

// From here on calls visit(context, block) for each block that is given back, before its bytes are
// wiped; null ends it. `visit` must not use the pool, and nobody else may meanwhile set another.
void visitGivenBack(void (*visit)(void* context, PoolBlock const& block), void* context);

// Prints the outstanding blocks on standard error, one line a block, oldest first.
void reportOutstanding();

// Whether PagedPool is out of reach at DISPATCH_LEVEL here. IRQL <= DISPATCH_LEVEL.
bool isPagedPoolGuarded();

// Looks at the guards of every block and at the freed memory still held back; stops the program
// when one is damaged.
void verifyPool();

// verifyPool, and stops the program when a block is outstanding. `who` heads the sentence: the
// module that was unloaded, or the test that ended.
void requireNoOutstanding(char const* who);

}  // namespace ntoshost
