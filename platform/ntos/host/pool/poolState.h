#pragma once

#include <pthread.h>

#include "ntoshost/pool.h"
#include "pool/blockList.h"
#include "pool/pagedMemory.h"

namespace ntoshost {

// The one pool of the program: the blocks that are out, and those that were freed and are held
// back.
struct Pool {
  pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
  BlockTable table;
  BlockList taken = {};
  BlockList heldBack = {};
  u64 lastSerial = 0;
  u64 footprint = 0;
  u64 peakFootprint = 0;
  void (*visitGivenBack)(void* context, PoolBlock const& block) = nullptr;
  void* visitContext = nullptr;
};

extern constinit Pool g_pool;

class PoolLock {
 public:
  PoolLock() { pthread_mutex_lock(&g_pool.lock); }
  ~PoolLock() { pthread_mutex_unlock(&g_pool.lock); }
  PoolLock(PoolLock const&) = delete;
  PoolLock& operator=(PoolLock const&) = delete;

 private:
  PagedAccess m_access;  // to the heads and guards of paged blocks
};

// Takes a block from the pool; null when memory is exhausted.
Block* takeBlock(POOL_TYPE type, size_t size, u32 tag, BlockKind kind);

// Takes a block back, whose bytes nobody may touch from here on. The caller has the lock.
void holdBack(Block& block, char const* call);

// What callers learn of a block.
PoolBlock describe(Block& block);

// The block at this address, which was taken and not freed. The caller has the lock.
Block& findTaken(void const* data, char const* call);

}  // namespace ntoshost
