#pragma once

// The status heap as its control record shows it, and ways to use it up.

#include "oxdiagk/tStatus2Heap.h"

constexpr i32 kRecordSize = 240;  // of a status' detail

// The control record, byte by byte as the module keeps it. Read without the lock.
struct tHeapRecord {
  u32 poolSize;
  u32 unitSize;
  u32 totalUnits;
  u32 freeUnits;
  u32 usedUnits;
  u32 allocatedBlocks;
  u32 freeBlocks;
  u32 padding;
  u64 firstUsableUnit;
  u64 arena;
  u64 rover;
  u64 lock;
};
static_assert(sizeof(tHeapRecord) == 64);

// The header in front of a block.
struct tHeapHeader {
  u64 next;
  u32 units;
  u32 padding;
};
static_assert(sizeof(tHeapHeader) == nOXDIAG100::tStatus2Heap::kUnitSize);

constexpr u32 kArenaSize =
    nOXDIAG100::tStatus2Heap::kPoolSize + nOXDIAG100::tStatus2Heap::kUnitSize;

inline nOXDIAG100::tStatus2Heap& theHeap() {
  i32 status = 0;
  return *nOXDIAG100::tStatus2Heap::getHeap(status);
}

inline tHeapRecord heapRecord() {
  tHeapRecord record;
  __builtin_memcpy(&record, &theHeap(), sizeof record);
  return record;
}

// Where an address lies in the arena, and the address at an offset.
inline u64 offsetInArena(void const* address) {
  return reinterpret_cast<u64>(address) - heapRecord().arena;
}
inline void* atOffset(u64 offset) {
  return reinterpret_cast<void*>(heapRecord().arena + offset);
}

inline tHeapHeader* headerOf(void* block) {
  return static_cast<tHeapHeader*>(block) - 1;
}

// Null on failure.
inline void* takeBlock(i32 size) {
  i32 status = 0;
  return theHeap().allocateMemoryBlock(size, status);
}

// The status of the failed attempt, 0 when there was a block, which is given back at once.
inline i32 takingFails(i32 size) {
  i32 status = 0;
  void* const block = theHeap().allocateMemoryBlock(size, status);
  if (block != nullptr) theHeap().releaseMemoryBlock(block, status);
  return status;
}

inline i32 giveBack(void* block) {
  i32 status = 0;
  theHeap().releaseMemoryBlock(block, status);
  return status;
}

// True when nothing is allocated and the free memory is in one piece.
inline bool isHeapUnused() {
  tHeapRecord const record = heapRecord();
  return record.freeUnits == record.totalUnits && record.usedUnits == 0 &&
         record.allocatedBlocks == 0 && record.freeBlocks == 1;
}

inline bool isSameRecord(tHeapRecord const& left, tHeapRecord const& right) {
  return __builtin_memcmp(&left, &right, sizeof left) == 0;
}

// Takes all that is left in the heap for the length of a test: every free fragment as one block.
class tFullHeap {
 public:
  tFullHeap() {
    for (u32 units = nOXDIAG100::tStatus2Heap::kTotalUnits; units != 0 && count != kCapacity;) {
      void* const block = takeBlock(static_cast<i32>((units - 1) * 16));
      if (block != nullptr) {
        blocks[count++] = block;
      } else {
        --units;
      }
    }
  }
  ~tFullHeap() { giveAllBack(); }
  tFullHeap(tFullHeap const&) = delete;
  tFullHeap& operator=(tFullHeap const&) = delete;

  void giveAllBack() {
    while (count != 0) giveBack(blocks[--count]);
  }

 private:
  static constexpr u32 kCapacity = 32;

  void* blocks[kCapacity];
  u32 count = 0;
};
