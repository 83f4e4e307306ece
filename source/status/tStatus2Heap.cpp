#include "oxdiagk/tStatus2Heap.h"

#include "qelmk/mergeStatus.h"
#include "status/freedMemory.h"
#include "vexk/memory.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {

// The header of a block, one unit. Of a free block only the header is read; the rest is retired,
// and so is the header of one that another took up. A free block links to the next one in address
// order. One that is allocated links to itself, which no free block does and hardly any content: an
// address inside a block is not taken for a block.
struct tStatus2Heap::tBlock {
  tBlock* next;
  u32 units;  // header included; 0 for the anchor alone
  u32 unused;
};

namespace {

constinit tStatus2Heap* pool = nullptr;

constexpr u32 kArenaUnits = tStatus2Heap::kTotalUnits + 1;  // and the anchor
constexpr size_t kArenaSize = size_t{kArenaUnits} * tStatus2Heap::kUnitSize;

constexpr tSyncDescriptor kLock = {
    kSyncKindMutex, kSyncFlagLongLived, kSyncAccessSynchronize, {0, 0}};

void retireUnits(void* first, u32 units) {
  retireMemory(first, size_t{units} * tStatus2Heap::kUnitSize);
}

// A negative size counts as the 2 GiB and more that its bits say, which no pool has.
u32 unitsOf(i32 size) {
  u32 const bytes = static_cast<u32>(size);
  u32 const remainder = bytes % tStatus2Heap::kUnitSize == 0 ? 0 : 1;
  return bytes / tStatus2Heap::kUnitSize + remainder + 1;
}

}  // namespace

i32 tStatus2Heap::create() {
  if (pool != nullptr) return 0;
  i32 status = 0;
  void* const record = _memNewUsingCRT(sizeof(tStatus2Heap), kMemLongLived, status);
  if (record == nullptr) return status;
  i32 arenaStatus = 0;
  void* const memory = _memNewUsingCRT(kArenaSize, kMemLongLived, arenaStatus);
  iSync* const sync = syncOpen(nullptr, kLock, status);
  if (sync == nullptr) {
    _memDelete(memory);
    _memDelete(record);
    return status;
  }
  pool = new (record) tStatus2Heap(memory, sync);
  return 0;
}

i32 tStatus2Heap::destroy() {
  tStatus2Heap* const heap = pool;
  if (heap == nullptr) return 0;
  pool = nullptr;
  i32 const status = syncClose(heap->lock);
  reuseMemory(heap->arena, kArenaSize);
  _memDelete(heap->arena);
  _memDelete(heap);
  return status;
}

tStatus2Heap::tStatus2Heap(void* memory, iSync* sync)
    : firstUsableUnit(nullptr), arena(static_cast<tBlock*>(memory)), rover(arena), lock(sync) {
  static_assert(sizeof(tBlock) == kUnitSize);
  static_assert(sizeof(tStatus2Heap) == 64);
  static_assert(offsetof(tStatus2Heap, poolSize) == 0);
  static_assert(offsetof(tStatus2Heap, unitSize) == 4);
  static_assert(offsetof(tStatus2Heap, totalUnits) == 8);
  static_assert(offsetof(tStatus2Heap, freeUnits) == 12);
  static_assert(offsetof(tStatus2Heap, usedUnits) == 16);
  static_assert(offsetof(tStatus2Heap, allocatedBlocks) == 20);
  static_assert(offsetof(tStatus2Heap, freeBlocks) == 24);
  static_assert(offsetof(tStatus2Heap, firstUsableUnit) == 32);
  static_assert(offsetof(tStatus2Heap, arena) == 40);
  static_assert(offsetof(tStatus2Heap, rover) == 48);
  static_assert(offsetof(tStatus2Heap, lock) == 56);
  if (arena == nullptr) {
    freeUnits = 0;
    return;
  }
  firstUsableUnit = arena + 1;
  *firstUsableUnit = {arena, kTotalUnits, 0};
  retireUnits(firstUsableUnit + 1, kTotalUnits - 1);
  *arena = {firstUsableUnit, 0, 0};
}

tStatus2Heap* tStatus2Heap::getHeap(i32& /*status*/) {
  return pool;
}

void* tStatus2Heap::allocateMemoryBlock(i32 size, i32& status) {
  if (status < 0) return nullptr;
  i32 const acquired = lock->acquire(kSyncWaitForever);
  if (acquired < 0) {
    status = acquired;
    return nullptr;
  }
  tBlock* const block = takeFirstFit(unitsOf(size));
  lock->release();
  if (block != nullptr) return block + 1;
  status = kStatusHeapFull;
  return nullptr;
}

void tStatus2Heap::releaseMemoryBlock(void* block, i32& status) {
  if (!isInside(block)) return nQELM100::mergeStatus(status, kStatusHeapBadBlock);
  i32 const acquired = lock->acquire(kSyncWaitForever);
  if (acquired < 0) return nQELM100::mergeStatus(status, acquired);
  nQELM100::mergeStatus(status, releaseGuarded(static_cast<tBlock*>(block) - 1));
  nQELM100::mergeStatus(status, lock->release());
}

void tStatus2Heap::printHeap() {
}

tStatus2Heap::tBlock* tStatus2Heap::takeFirstFit(u32 units) {
  // This is so without an arena, too.
  if (units > freeUnits) return nullptr;
  for (tBlock* previous = rover;;) {
    tBlock* const block = previous->next;
    if (block->units >= units) return takeFrom(previous, block, units);
    if (block == rover) return nullptr;
    previous = block;
  }
}

tStatus2Heap::tBlock* tStatus2Heap::takeFrom(tBlock* previous, tBlock* block, u32 units) {
  tBlock* taken = block;
  if (block->units == units) {
    previous->next = block->next;
    --freeBlocks;
  } else {
    block->units -= units;
    taken = block + block->units;
  }
  reuseMemory(taken, size_t{units} * kUnitSize);
  *taken = {taken, units, 0};
  freeUnits -= units;
  usedUnits += units;
  ++allocatedBlocks;
  rover = previous;
  return taken;
}

// A block without content at the very top has its address at the end of the arena.
bool tStatus2Heap::isInside(void const* block) const {
  if (arena == nullptr) return false;
  uintptr_t const offset =
      reinterpret_cast<uintptr_t>(block) - reinterpret_cast<uintptr_t>(firstUsableUnit);
  return offset >= kUnitSize && offset <= kPoolSize && offset % kUnitSize == 0;
}

i32 tStatus2Heap::releaseGuarded(tBlock* block) {
  tBlock* const previous = findPredecessor(block);
  if (!isReleasable(block, previous)) return kStatusHeapBadBlock;
  insert(block, previous);
  return 0;
}

tStatus2Heap::tBlock* tStatus2Heap::findPredecessor(tBlock const* block) const {
  tBlock* previous = rover < block ? rover : arena;
  while (previous->next != arena && previous->next < block) previous = previous->next;
  return previous;
}

// Nothing inside a free block is read: it is retired, and a stranger may have written to it.
bool tStatus2Heap::isReleasable(tBlock const* block, tBlock const* previous) const {
  if (previous + previous->units > block) return false;
  bool const isAllocated = block->next == block && block->units != 0;
  if (!isAllocated) return false;
  tBlock const* const next = previous->next;
  tBlock const* const limit = next == arena ? arena + kArenaUnits : next;
  return block->units <= static_cast<size_t>(limit - block);
}

// The anchor has no units and lies below every block, so it never ends where a block begins.
void tStatus2Heap::insert(tBlock* block, tBlock* previous) {
  usedUnits -= block->units;
  freeUnits += block->units;
  ++freeBlocks;
  retireUnits(block + 1, block->units - 1);
  tBlock* const next = previous->next;
  block->next = next;
  if (block + block->units == next) {
    block->units += next->units;
    block->next = next->next;
    retireUnits(next, 1);
    --freeBlocks;
  }
  if (previous + previous->units == block) {
    previous->units += block->units;
    previous->next = block->next;
    retireUnits(block, 1);
    --freeBlocks;
  } else {
    previous->next = block;
  }
  --allocatedBlocks;
  rover = previous;
}

}  // namespace nOXDIAG100
