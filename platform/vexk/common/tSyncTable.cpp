#include "tSyncTable.h"

#include "vexk/statusCodes.h"
#include "vexkntos/tFastMutexGuard.h"

namespace {

void deleteUnused(tSharedLock* lock) {
  if (lock->handleCount == 0) delete lock;
}

}  // namespace

constinit tSyncTable vexSyncTable;

void tSyncTable::initialise() {
  ExInitializeFastMutex(&guard);
}

iSync* tSyncTable::open(char const* name, tSyncDescriptor const& descriptor, i32& status) {
  tFastMutexGuard const held(guard);
  tSyncHandle* handle = openGuarded(name, descriptor);
  if (handle == nullptr) status = kStatusOutOfMemory;
  return handle;
}

tSyncHandle* tSyncTable::openGuarded(char const* name, tSyncDescriptor const& descriptor) {
  tSharedLock* lock = find(name, descriptor);
  if (lock == nullptr) lock = new tSharedLock(name, descriptor);
  if (lock == nullptr) return nullptr;
  auto* handle = new tSyncHandle(*lock);
  if (handle == nullptr) {
    deleteUnused(lock);
    return nullptr;
  }
  ++lock->handleCount;
  handle->next = first;
  first = handle;
  return handle;
}

tSharedLock* tSyncTable::find(char const* name, tSyncDescriptor const& descriptor) const {
  for (tSyncHandle* handle = first; handle != nullptr; handle = handle->next) {
    if (handle->getLock().isNamed(name, descriptor)) return &handle->getLock();
  }
  return nullptr;
}

i32 tSyncTable::close(iSync*& sync) {
  tFastMutexGuard const held(guard);
  return closeGuarded(sync);
}

i32 tSyncTable::closeGuarded(iSync*& sync) {
  tSyncHandle** link = &first;
  while (*link != nullptr && *link != sync) link = &(*link)->next;
  tSyncHandle* handle = *link;
  if (handle == nullptr) {
    sync = nullptr;
    return kStatusBadArgument;
  }
  tSharedLock& lock = handle->getLock();
  if (lock.isOwnedByCaller() || (lock.handleCount == 1 && lock.isInUse())) {
    return kStatusSyncInUse;
  }
  *link = handle->next;
  --lock.handleCount;
  deleteUnused(&lock);
  delete handle;
  sync = nullptr;
  return 0;
}

u32 tSyncTable::countHandles() {
  tFastMutexGuard const held(guard);
  u32 count = 0;
  for (tSyncHandle* handle = first; handle != nullptr; handle = handle->next) ++count;
  return count;
}

bool tSyncTable::findOwned(char (&name)[kSyncMaximumNameLength + 1]) {
  tFastMutexGuard const held(guard);
  tSyncHandle const* handle = first;
  while (handle != nullptr && !handle->getLock().isOwnedByCaller()) handle = handle->next;
  if (handle != nullptr) handle->getLock().copyName(name);
  return handle != nullptr;
}
