#include "wait/heldLocks.h"

namespace ntoshost {

void noteLockTaken(void const*, LockKind) {
}

void noteLockReleased(void const*) {
}

void const* ownedFastMutex() {
  return nullptr;
}

u32 countOwnedLocks() {
  return 0;
}

void const* lastOwnedLock() {
  return nullptr;
}

void const* ownedLockWithin(void const*, size_t) {
  return nullptr;
}

void const* lockTakenWithin(DRIVER_OBJECT const*) {
  return nullptr;
}

void requireNoFastMutex(char const*) {
}

}  // namespace ntoshost
