#pragma once

#include <pthread.h>

#include "pool/blockList.h"

namespace ntoshost {

// The one pool of the program: the blocks that are out, and those that were freed and are held
// back.
struct Pool {
  pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
  BlockTable table;
  BlockList taken = {};
  BlockList heldBack = {};
  u64 lastSerial = 0;
};

extern constinit Pool g_pool;

class PoolLock {
 public:
  PoolLock() { pthread_mutex_lock(&g_pool.lock); }
  ~PoolLock() { pthread_mutex_unlock(&g_pool.lock); }
  PoolLock(PoolLock const&) = delete;
  PoolLock& operator=(PoolLock const&) = delete;
};

}  // namespace ntoshost
