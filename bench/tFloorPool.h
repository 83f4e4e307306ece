#pragma once

#include <mutex>

#include "ntos/types.h"

// The least that a pool of status records can be: 64 blocks of 240 bytes on a list of free ones,
// under a lock. It serves one size only, never merges or splits, and checks nothing.
class tFloorPool {
 public:
  static constexpr u32 kBlockSize = 240;
  static constexpr u32 kBlockCount = 64;

  tFloorPool();

  // Null when all blocks are taken.
  void* take();
  void give(void* block);

 private:
  union tBlock {
    tBlock* next;
    char memory[kBlockSize];
  };

  std::mutex lock;
  tBlock* first = nullptr;
  tBlock blocks[kBlockCount];
};
