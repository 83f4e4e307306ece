#include "ntos/pool.h"

// A pool of equal blocks. What runs on metal takes a few small objects and gives them back.

namespace {

constexpr size_t kBlockSize = 256;
constexpr size_t kBlockCount = 64;

struct alignas(16) tBlock {
  u8 bytes[kBlockSize];
};

constinit tBlock blocks[kBlockCount] = {};
constinit bool isTaken[kBlockCount] = {};

}  // namespace

void* ExAllocatePoolWithTag(POOL_TYPE, size_t size, u32) {
  if (size > kBlockSize) return nullptr;
  for (size_t i = 0; i < kBlockCount; ++i) {
    if (isTaken[i]) continue;
    isTaken[i] = true;
    return blocks[i].bytes;
  }
  return nullptr;
}

void ExFreePoolWithTag(void* block, u32) {
  size_t const i = static_cast<size_t>(static_cast<tBlock*>(block) - blocks);
  if (i >= kBlockCount || !isTaken[i]) __builtin_trap();
  isTaken[i] = false;
}
