#include "pool/poolState.h"

#include "io/currentDriver.h"
#include "ntoshost/violation.h"

namespace ntoshost {

constinit Pool g_pool;

namespace {

constexpr u64 kPoolLimit = u64{1} << 30;
constexpr u64 kHeldBackBlocks = 1024;
constexpr u64 kHeldBackBytes = u64{8} << 20;
constexpr u64 kPoolUnit = 16;  // bytes

u64 footprintOf(Block const& block) {
  return kPoolUnit + ((block.size + kPoolUnit - 1) & ~(kPoolUnit - 1));
}

void dropOldestHeldBack(char const* call) {
  Block* const block = g_pool.heldBack.oldest;
  verifyBlock(*block, call);
  g_pool.heldBack.remove(*block);
  g_pool.table.remove(*block);
  destroyBlock(block);
}

}  // namespace

Block* takeBlock(POOL_TYPE type, size_t size, u32 tag, BlockKind kind) {
  PoolLock const lock;
  if (size > kPoolLimit - g_pool.taken.bytes) return nullptr;
  Block* const block = makeBlock(type, size);
  if (block == nullptr) return nullptr;
  block->tag = tag;
  block->kind = kind;
  block->driver = currentDriver();
  block->serial = ++g_pool.lastSerial;
  g_pool.table.add(*block);
  g_pool.taken.add(*block);
  g_pool.footprint += footprintOf(*block);
  if (g_pool.footprint > g_pool.peakFootprint) g_pool.peakFootprint = g_pool.footprint;
  return block;
}

PoolBlock describe(Block& block) {
  return {block.data(), block.size, block.tag, block.type, block.serial};
}

void holdBack(Block& block, char const* call) {
  if (g_pool.visitGivenBack != nullptr) {
    g_pool.visitGivenBack(g_pool.visitContext, describe(block));
  }
  retireBlock(block);
  g_pool.taken.remove(block);
  g_pool.footprint -= footprintOf(block);
  g_pool.heldBack.add(block);
  while (g_pool.heldBack.count > kHeldBackBlocks || g_pool.heldBack.bytes > kHeldBackBytes) {
    dropOldestHeldBack(call);
  }
}

Block& findTaken(void const* data, char const* call) {
  Block* const block = g_pool.table.find(data);
  if (block == nullptr) {
    violation("%s was given %p, which the pool never handed out or took back long ago.", call,
              data);
  }
  if (block->isFreed) {
    violation("%s: the block of %zu bytes with tag '%s' at %p was freed twice.", call, block->size,
              TagText(block->tag).text, data);
  }
  return *block;
}

}  // namespace ntoshost
