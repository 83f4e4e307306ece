#include "ntoshost/pool.h"

#include <stdio.h>

#include "ntoshost/violation.h"
#include "pool/poolState.h"
#include "standardError.h"

namespace ntoshost {
namespace {

void printBlock(void*, PoolBlock const& block) {
  char line[160];
  int const length =
      snprintf(line, sizeof(line), "ntos: block %llu: %zu bytes of %s, tag '%s', at %p\n",
               block.serial, block.size, block.type == PagedPool ? "PagedPool" : "NonPagedPool",
               TagText(block.tag).text, block.address);
  writeStandardError(line, static_cast<size_t>(length));
}

void verifyList(BlockList const& list) {
  for (Block* block = list.oldest; block != nullptr; block = block->newer) {
    verifyBlock(*block, "verifyPool");
  }
}

}  // namespace

u64 outstandingBlocks() {
  PoolLock const lock;
  return g_pool.taken.count;
}

u64 outstandingBytes() {
  PoolLock const lock;
  return g_pool.taken.bytes;
}

u64 outstandingFootprint() {
  PoolLock const lock;
  return g_pool.footprint;
}

void watchFootprint() {
  PoolLock const lock;
  g_pool.peakFootprint = g_pool.footprint;
}

u64 peakFootprint() {
  PoolLock const lock;
  return g_pool.peakFootprint;
}

void visitOutstanding(void (*visit)(void* context, PoolBlock const& block), void* context) {
  PoolLock const lock;
  for (Block* block = g_pool.taken.oldest; block != nullptr; block = block->newer) {
    visit(context, describe(*block));
  }
}

void visitGivenBack(void (*visit)(void* context, PoolBlock const& block), void* context) {
  PoolLock const lock;
  g_pool.visitGivenBack = visit;
  g_pool.visitContext = context;
}

void reportOutstanding() {
  visitOutstanding(printBlock, nullptr);
}

void verifyPool() {
  PoolLock const lock;
  verifyList(g_pool.taken);
  verifyList(g_pool.heldBack);
}

void requireNoOutstanding(char const* who) {
  verifyPool();
  PoolLock const lock;
  BlockList const& taken = g_pool.taken;
  if (taken.count == 0) return;
  Block& first = *taken.oldest;
  violation(
      "%s left %llu pool blocks of together %llu bytes behind; the oldest has %zu bytes and tag "
      "'%s'.",
      who, taken.count, taken.bytes, first.size, TagText(first.tag).text);
}

}  // namespace ntoshost
