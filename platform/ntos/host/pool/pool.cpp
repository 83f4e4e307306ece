#include "ntos/pool.h"

#include "irqlCheck.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"
#include "pool/poolState.h"

namespace ntoshost {

constinit Pool g_pool;

namespace {

constexpr u64 kPoolLimit = u64{1} << 30;
constexpr u64 kHeldBackBlocks = 1024;
constexpr u64 kHeldBackBytes = u64{8} << 20;
constexpr char kFree[] = "ExFreePoolWithTag";

KIRQL highestIrql(POOL_TYPE type) {
  return type == PagedPool ? APC_LEVEL : DISPATCH_LEVEL;
}

void requireSoundRequest(POOL_TYPE type, size_t size, u32 tag) {
  if (type != NonPagedPool && type != PagedPool && type != NonPagedPoolNx) {
    violation("ExAllocatePoolWithTag was given the unknown pool type %d.", static_cast<int>(type));
  }
  requireIrqlAtMost(highestIrql(type), type == PagedPool ? "ExAllocatePoolWithTag(PagedPool)"
                                                         : "ExAllocatePoolWithTag(NonPagedPool)");
  if (size == 0) violation("ExAllocatePoolWithTag was asked for 0 bytes.");
  if (tag == 0) violation("ExAllocatePoolWithTag was given no tag.");
}

Block* takeBlock(POOL_TYPE type, size_t size, u32 tag) {
  PoolLock const lock;
  if (size > kPoolLimit - g_pool.taken.bytes) return nullptr;
  Block* const block = makeBlock(size);
  if (block == nullptr) return nullptr;
  block->type = type;
  block->tag = tag;
  block->serial = ++g_pool.lastSerial;
  g_pool.table.add(*block);
  g_pool.taken.add(*block);
  return block;
}

void dropOldestHeldBack() {
  Block* const block = g_pool.heldBack.oldest;
  verifyBlock(*block, kFree);
  g_pool.heldBack.remove(*block);
  g_pool.table.remove(*block);
  destroyBlock(block);
}

void holdBack(Block& block) {
  retireBlock(block);
  g_pool.taken.remove(block);
  g_pool.heldBack.add(block);
  while (g_pool.heldBack.count > kHeldBackBlocks || g_pool.heldBack.bytes > kHeldBackBytes) {
    dropOldestHeldBack();
  }
}

Block& findTaken(void* data) {
  Block* const block = g_pool.table.find(data);
  if (block == nullptr) {
    violation("%s was given %p, which the pool never handed out or took back long ago.", kFree,
              data);
  }
  if (block->isFreed) {
    violation("%s: the block of %zu bytes with tag '%s' at %p was freed twice.", kFree, block->size,
              TagText(block->tag).text, data);
  }
  return *block;
}

void requireSoundRelease(Block& block, u32 tag) {
  requireIrqlAtMost(highestIrql(block.type), block.type == PagedPool
                                                 ? "ExFreePoolWithTag of PagedPool"
                                                 : "ExFreePoolWithTag of NonPagedPool");
  if (block.tag != tag) {
    violation("%s: the block of %zu bytes with tag '%s' at %p was freed with tag '%s'.", kFree,
              block.size, TagText(block.tag).text, static_cast<void*>(block.data()),
              TagText(tag).text);
  }
  verifyBlock(block, kFree);
}

}  // namespace

}  // namespace ntoshost

void* ExAllocatePoolWithTag(POOL_TYPE type, size_t size, u32 tag) {
  ntoshost::requireSoundRequest(type, size, tag);
  if (ntoshost::injectFault(ntoshost::kFaultMemory)) return nullptr;
  ntoshost::Block* const block = ntoshost::takeBlock(type, size, tag);
  return block == nullptr ? nullptr : block->data();
}

void ExFreePoolWithTag(void* data, u32 tag) {
  if (data == nullptr) ntoshost::violation("ExFreePoolWithTag was given null.");
  ntoshost::PoolLock const lock;
  ntoshost::Block& block = ntoshost::findTaken(data);
  ntoshost::requireSoundRelease(block, tag);
  ntoshost::holdBack(block);
}
