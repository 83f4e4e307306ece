#include "tFloorPool.h"

tFloorPool::tFloorPool() {
  for (tBlock& block : blocks) {
    block.next = first;
    first = &block;
  }
}

void* tFloorPool::take() {
  std::lock_guard const held(lock);
  tBlock* const block = first;
  if (block != nullptr) first = block->next;
  return block;
}

void tFloorPool::give(void* block) {
  std::lock_guard const held(lock);
  tBlock* const given = static_cast<tBlock*>(block);
  given->next = first;
  first = given;
}
