#include "ntos/pool.h"

#include "io/removeLocks.h"
#include "irqlCheck.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"
#include "pool/poolState.h"

namespace ntoshost {

namespace {

constexpr char kFree[] = "ExFreePoolWithTag";

KIRQL highestIrql(POOL_TYPE type) {
  return type == PagedPool ? APC_LEVEL : DISPATCH_LEVEL;
}

void requireSoundRequest(POOL_TYPE type, size_t size, u32 tag) {
  if (type != NonPagedPool && type != PagedPool && type != NonPagedPoolNx) {
    violation("ExAllocatePoolWithTag was given the unknown pool type %d.", static_cast<int>(type));
  }
  requireIrqlAtMost(highestIrql(type), type == PagedPool ? "ExAllocatePoolWithTag(PagedPool)"
                                                         : "ExAllocatePoolWithTag(NonPagedPoolNx)");
  if (size == 0) violation("ExAllocatePoolWithTag was asked for 0 bytes.");
  if (tag == 0) violation("ExAllocatePoolWithTag was given no tag.");
  if (type == NonPagedPool) {
    violation(
        "ExAllocatePoolWithTag was asked for %zu bytes with tag '%s' that can be executed "
        "(NonPagedPool); it has to be NonPagedPoolNx.",
        size, TagText(tag).text);
  }
}

void requireSoundRelease(Block& block, u32 tag) {
  if (block.kind != BlockKind::plain) {
    violation("%s was given %p, an object of the executive that has its own way to go.", kFree,
              static_cast<void*>(block.data()));
  }
  requireIrqlOnly(highestIrql(block.type), block.type == PagedPool
                                               ? "ExFreePoolWithTag of PagedPool"
                                               : "ExFreePoolWithTag of NonPagedPool");
  if (tag != 0 && block.tag != tag) {
    violation("%s: the block of %zu bytes with tag '%s' at %p was freed with tag '%s'.", kFree,
              block.size, TagText(block.tag).text, static_cast<void*>(block.data()),
              TagText(tag).text);
  }
  if (forgetRemoveLocks(block.data(), block.size) != nullptr) {
    violation("%s: the block of %zu bytes with tag '%s' at %p has a remove lock that is held.",
              kFree, block.size, TagText(block.tag).text, static_cast<void*>(block.data()));
  }
  verifyBlock(block, kFree);
}

}  // namespace
}  // namespace ntoshost

void* ExAllocatePoolWithTag(POOL_TYPE type, size_t size, u32 tag) {
  ntoshost::requireSoundRequest(type, size, tag);
  if (ntoshost::injectFault(ntoshost::kFaultMemory)) return nullptr;
  ntoshost::Block* const block = ntoshost::takeBlock(type, size, tag, ntoshost::BlockKind::plain);
  return block == nullptr ? nullptr : block->data();
}

void ExFreePoolWithTag(void* data, u32 tag) {
  if (data == nullptr) ntoshost::violation("ExFreePoolWithTag was given null.");
  ntoshost::PoolLock const lock;
  ntoshost::Block& block = ntoshost::findTaken(data, ntoshost::kFree);
  ntoshost::requireSoundRelease(block, tag);
  ntoshost::holdBack(block, ntoshost::kFree);
}
