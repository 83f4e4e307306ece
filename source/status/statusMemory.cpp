#include "status/statusMemory.h"

#include "oxdiagk/tStatus2Heap.h"

namespace nOXDIAG100 {

void* takeStatusMemory(size_t size, i32& status) {
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  if (heap != nullptr && size <= tStatus2Heap::kPoolSize) {
    return heap->allocateMemoryBlock(static_cast<i32>(size), status);
  }
  if (status >= 0) status = kStatusHeapFull;
  return nullptr;
}

void giveStatusMemoryBack(void* block) {
  i32 status = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  if (heap != nullptr) heap->releaseMemoryBlock(block, status);
}

}  // namespace nOXDIAG100
