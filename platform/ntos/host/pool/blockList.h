#pragma once

#include "pool/block.h"

namespace ntoshost {

// Blocks in the order they were added, linked through their heads.
struct BlockList {
  Block* oldest;
  Block* newest;
  u64 count;
  u64 bytes;

  void add(Block& block);
  void remove(Block& block);
};

// Finds a block by the address of its data, without touching what is there.
class BlockTable {
 public:
  void add(Block& block);
  void remove(Block& block);
  Block* find(void const* data) const;

 private:
  static constexpr size_t kBuckets = 4096;
  static size_t bucketOf(void const* data);

  Block* m_buckets[kBuckets] = {};
};

}  // namespace ntoshost
