#include "pool/objects.h"

#include <string.h>

#include "pool/poolState.h"

namespace ntoshost {
void* takeObject(BlockKind kind, size_t size, u32 tag) {
  Block* const block = takeBlock(NonPagedPoolNx, size, tag, kind);
  return block == nullptr ? nullptr : memset(block->data(), 0, size);
}

void releaseObject(void* object, char const* call) {
  PoolLock const lock;
  Block& block = findTaken(object, call);
  verifyBlock(block, call);
  holdBack(block, call);
}

Presence lookFor(BlockKind kind, void const* object) {
  PoolLock const lock;
  Block const* const block = g_pool.table.find(object);
  if (block == nullptr || block->kind != kind) return Presence::unknown;
  return block->isFreed ? Presence::freed : Presence::live;
}

}  // namespace ntoshost
