#include "config/tReleasedHandles.h"

namespace nOXDIAG100 {

tReleasedHandles::tReleasedHandles() {
  slots.resize(kSlots);
}

void tReleasedHandles::add(u32 handle) {
  slots[cursor] = handle;
  cursor = (cursor + 1) % kSlots;
}

bool tReleasedHandles::contains(u32 handle) const {
  for (u32 slot : slots) {
    if (slot == handle) return true;
  }
  return false;
}

}  // namespace nOXDIAG100
