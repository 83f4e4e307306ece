#pragma once

// The fixed memory behind statuses.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/statusCodes.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {

// A private pool of 16 KiB from which the detail of every tStatus2 and the status descriptions are
// taken: two blocks for a description, itself and the object that holds its list. The items of a
// description are in the module's memory. After its creation the pool takes nothing from the
// general one, so a status can be set when that is exhausted, and a flood of errors cannot eat the
// system's memory: when the pool is full, allocation fails. There is one pool for the module; it
// exists from oxdiagkInitialize to oxdiagkUnload.
//
// Clients seldom call this class: tStatus2 and the operators of iStatus2Description do.
//
//     i32 status = 0;
//     tStatus2Heap* heap = tStatus2Heap::getHeap(status);
//     void* block = heap->allocateMemoryBlock(240, status);
//     if (block != nullptr) heap->releaseMemoryBlock(block, status);
//
// The pool is divided into 1024 units of 16 bytes. A block takes one unit for its header and as
// many as its size needs: 0 bytes one unit, 16 bytes two, 17 bytes three. 64 blocks of 240 bytes
// fill it.
//
// A block that was given back is no longer its caller's. The address sanitizer, if the library is
// built with it, reports who uses such a block; in a build without NDEBUG each byte of its content
// is 0xDD then.
//
// Any thread; every change happens under the pool's own lock. IRQL <= APC_LEVEL: above it nothing
// is allocated or released and the status becomes kStatusSyncIrqlTooHigh.
class OXDIAG_API tStatus2Heap {
 public:
  static constexpr u32 kPoolSize = 16384;  // bytes
  static constexpr u32 kUnitSize = 16;     // bytes; every block is aligned to it
  static constexpr u32 kTotalUnits = kPoolSize / kUnitSize;

  tStatus2Heap(tStatus2Heap const&) = delete;
  tStatus2Heap& operator=(tStatus2Heap const&) = delete;

  // The module's pool; null before the library's start and after its stop. Leaves `status` alone.
  // Any IRQL.
  static tStatus2Heap* getHeap(i32& status);

  // A block of at least `size` bytes, aligned to 16, not initialised; the caller gives it back with
  // releaseMemoryBlock. On failure the result is null, the pool is unchanged and `status` says why:
  //   kStatusHeapFull  no free block is large enough; so for every negative size, too
  //   the lock's code  the lock could not be acquired
  // With an error in `status` on entry nothing happens and the result is null.
  void* allocateMemoryBlock(i32 size, i32& status);

  // Gives a block back; works with an error in `status` too, which is then kept. Otherwise a
  // failure, which leaves the pool unchanged, is stored in `status`:
  //   kStatusHeapBadBlock  not the address of a block that is allocated: null, an address outside
  //                        the pool (the lock is not taken for it), one inside a block, a block
  //                        that is free already or reaches into a free one
  //   the lock's code      the lock could not be acquired; the block stays allocated
  void releaseMemoryBlock(void* block, i32& status);

  // Kept for the order of the interface; prints nothing.
  void printHeap();

  // Counters for tests and tools, read without the lock: exact while no other thread uses the pool.
  // A pool whose memory could not be had at the library's start has no free units from the start.
  u32 getFreeUnits() const { return freeUnits; }
  u32 getUsedUnits() const { return usedUnits; }  // headers included
  u32 getAllocatedBlocks() const { return allocatedBlocks; }
  u32 getFreeBlocks() const { return freeBlocks; }  // fragments of the free memory

 private:
  friend i32 statusHeapMain(u32 phase);

  struct tBlock;

  static i32 create();
  static i32 destroy();

  // Takes the pool memory over; null is none.
  tStatus2Heap(void* memory, iSync* sync);

  tBlock* takeFirstFit(u32 units);
  tBlock* takeFrom(tBlock* previous, tBlock* block, u32 units);
  bool isInside(void const* block) const;
  tBlock* findPredecessor(tBlock const* block) const;
  bool isReleasable(tBlock const* block, tBlock const* previous) const;
  void insert(tBlock* block, tBlock* previous);
  i32 releaseGuarded(tBlock* block);

  // The control record, 64 bytes.
  u32 poolSize = kPoolSize;
  u32 unitSize = kUnitSize;
  u32 totalUnits = kTotalUnits;
  u32 freeUnits = kTotalUnits;
  u32 usedUnits = 0;
  u32 allocatedBlocks = 0;
  u32 freeBlocks = 1;
  tBlock* firstUsableUnit;
  tBlock* arena;  // owned; its first unit is the anchor of the free list
  tBlock* rover;  // the search for a free block starts behind it
  iSync* lock;    // owned
};

}  // namespace nOXDIAG100
