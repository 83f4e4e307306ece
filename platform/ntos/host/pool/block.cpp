#include "pool/block.h"

#include <stdlib.h>
#include <string.h>

#include "ntoshost/violation.h"
#include "pool/pagedMemory.h"
#include "pool/poison.h"

namespace ntoshost {
namespace {

constexpr u8 kGuardByte = 0xFB;
constexpr u8 kFreshByte = 0xA5;
constexpr u8 kFreedByte = 0xDD;

// Distance of the first byte that is not `expected`, or `size`. The C library's functions would
// have the sanitizer look as well.
NTOSHOST_SEES_POISON size_t findOther(u8 const* bytes, size_t size, u8 expected) {
  using Word [[gnu::may_alias, gnu::aligned(1)]] = u64;
  u8 const volatile* const watched = bytes;
  u64 const word = u64{0x0101010101010101} * expected;
  size_t at = 0;
  while (at + sizeof(Word) <= size &&
         *reinterpret_cast<Word const volatile*>(watched + at) == word) {
    at += sizeof(Word);
  }
  while (at < size && watched[at] == expected) ++at;
  return at;
}

// With the head and the guards.
size_t wholeSize(size_t size) {
  return (sizeof(Block) + 2 * kGuardSize + size + 15) & ~size_t{15};
}

void verifyGuard(Block& block, u8 const* guard, char const* side, char const* call) {
  size_t const at = findOther(guard, kGuardSize, kGuardByte);
  if (at == kGuardSize) return;
  violation(
      "%s: the block of %zu bytes with tag '%s' at %p was overrun: byte %zu of the guard %s it "
      "has changed.",
      call, block.size, TagText(block.tag).text, static_cast<void*>(block.data()), at, side);
}

}  // namespace

Block* makeBlock(POOL_TYPE type, size_t size) {
  size_t const whole = wholeSize(size);
  void* const memory = type == PagedPool ? takePagedMemory(whole) : aligned_alloc(16, whole);
  if (memory == nullptr) return nullptr;
  Block* const block = static_cast<Block*>(memory);
  *block = Block{};
  block->type = type;
  block->size = size;
  memset(block->frontGuard(), kGuardByte, kGuardSize);
  memset(block->data(), kFreshByte, size);
  memset(block->rearGuard(), kGuardByte, kGuardSize);
  poison(block->frontGuard(), kGuardSize);
  poison(block->rearGuard(), kGuardSize);
  return block;
}

void retireBlock(Block& block) {
  block.isFreed = true;
  memset(block.data(), kFreedByte, block.size);
  poison(block.data(), block.size);
}

void destroyBlock(Block* block) {
  unpoison(block->frontGuard(), block->size + 2 * kGuardSize);
  if (block->type != PagedPool) return free(block);
  givePagedMemory(block, wholeSize(block->size));
}

void verifyBlock(Block& block, char const* call) {
  verifyGuard(block, block.frontGuard(), "before", call);
  verifyGuard(block, block.rearGuard(), "behind", call);
  if (!block.isFreed) return;
  size_t const at = findOther(block.data(), block.size, kFreedByte);
  if (at == block.size) return;
  violation(
      "%s: byte %zu of the block of %zu bytes with tag '%s' at %p was written after the block "
      "was freed.",
      call, at, block.size, TagText(block.tag).text, static_cast<void*>(block.data()));
}

TagText::TagText(u32 tag) {
  for (char& character : text) {
    u8 const byte = static_cast<u8>(tag);
    character = byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : '?';
    tag >>= 8;
  }
  text[4] = 0;
}

}  // namespace ntoshost
