#include "pool/blockList.h"

namespace ntoshost {

void BlockList::add(Block& block) {
  block.older = newest;
  block.newer = nullptr;
  (newest != nullptr ? newest->newer : oldest) = &block;
  newest = &block;
  ++count;
  bytes += block.size;
}

void BlockList::remove(Block& block) {
  (block.older != nullptr ? block.older->newer : oldest) = block.newer;
  (block.newer != nullptr ? block.newer->older : newest) = block.older;
  --count;
  bytes -= block.size;
}

void BlockTable::add(Block& block) {
  Block*& bucket = m_buckets[bucketOf(block.data())];
  block.nextInBucket = bucket;
  bucket = &block;
}

void BlockTable::remove(Block& block) {
  Block** link = &m_buckets[bucketOf(block.data())];
  while (*link != &block) link = &(*link)->nextInBucket;
  *link = block.nextInBucket;
}

Block* BlockTable::find(void const* data) const {
  Block* block = m_buckets[bucketOf(data)];
  while (block != nullptr && block->data() != data) block = block->nextInBucket;
  return block;
}

size_t BlockTable::bucketOf(void const* data) {
  constexpr u64 kGoldenRatio = 0x9E3779B97F4A7C15;
  return reinterpret_cast<uintptr_t>(data) * kGoldenRatio >> 52;
}

}  // namespace ntoshost
