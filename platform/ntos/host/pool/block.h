#pragma once

#include "ntos/pool.h"

struct _DRIVER_OBJECT;
using DRIVER_OBJECT = _DRIVER_OBJECT;

namespace ntoshost {

constexpr size_t kGuardSize = 16;

// Whose block it is: the caller's, or an object that the executive made for him.
enum class BlockKind : u8 { plain, driver, device, extension, request, buffer };

// The head of a block; the front guard, the caller's bytes and the rear guard follow it.
struct alignas(16) Block {
  Block* nextInBucket;
  Block* older;
  Block* newer;
  u64 serial;
  size_t size;            // of the caller's bytes
  DRIVER_OBJECT* driver;  // that ran when it was taken; null: none
  u32 tag;
  POOL_TYPE type;
  BlockKind kind;
  bool isFreed;

  u8* data() { return reinterpret_cast<u8*>(this + 1) + kGuardSize; }
  u8* frontGuard() { return data() - kGuardSize; }
  u8* rearGuard() { return data() + size; }
};
static_assert(sizeof(Block) % 16 == 0 && kGuardSize % 16 == 0, "data is aligned to 16 bytes");

// Memory for a block of `size` bytes, guarded and filled; null when there is none. Paged memory has
// pages of its own, the other is the C library's.
Block* makeBlock(POOL_TYPE type, size_t size);

// Fills the caller's bytes, which nobody may touch from here on.
void retireBlock(Block& block);

// Gives the memory back to where it is from.
void destroyBlock(Block* block);

// Stops the program when a guard of the block was written to, or its bytes after they were freed.
// `call` is who looked.
void verifyBlock(Block& block, char const* call);

// A tag as text for the sentences.
struct TagText {
  explicit TagText(u32 tag);
  char text[5];
};

}  // namespace ntoshost
