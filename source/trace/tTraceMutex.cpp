#include "oxdiagk/tTrace.h"
#include "vexk/sync.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {

void tTrace::openMutex() {
  if (mutexObject != nullptr) return;
  tSyncDescriptor descriptor;
  if (mutexKernelToken[0] != 0 || mutexKernelToken[1] != 0) {
    descriptor.kind = kSyncKindTokenMutex;
    descriptor.token[0] = mutexKernelToken[0];
    descriptor.token[1] = mutexKernelToken[1];
  }
  i32 status = 0;
  iSync* const opened = syncOpen("nOXDIAG100::tTrace::_mutex", descriptor, status);
  __atomic_store_n(&mutexObject, opened, __ATOMIC_RELEASE);
}

void tTrace::closeMutex() {
  while (mutexDepth != 0 && mutexOwner == tThreadUtility::getCurrentThreadId()) endLine();
  syncClose(mutexObject);
}

void tTrace::enableMutex() {
  if (!isBuilt()) return;
  tConfigurationGuard const guard(configurationLock);
  openMutex();
  tSyncLock const lock(mutexObject);
  store(mutex, 1);
}

void tTrace::disableMutex() {
  if (!isBuilt()) return;
  tConfigurationGuard const guard(configurationLock);
  tSyncLock const lock(mutexObject);
  store(mutex, 0);
}

u32 tTrace::mutexIsEnabled() const {
  return load(mutex);
}

// Once opened, the lock stays, so whoever has seen it may use it.
iSync* tTrace::getMutex() const {
  return __atomic_load_n(&mutexObject, __ATOMIC_ACQUIRE);
}

void tTrace::beginLine() {
  if (load(mutex) == 0) return;
  iSync* const lock = getMutex();
  if (lock == nullptr || lock->acquire(kSyncWaitForever) < 0) return;
  __atomic_store_n(&mutexOwner, tThreadUtility::getCurrentThreadId(), __ATOMIC_RELAXED);
  __atomic_store_n(&mutexDepth, mutexDepth + 1, __ATOMIC_RELEASE);
}

void tTrace::endLine() {
  iSync* const lock = getMutex();
  if (lock == nullptr || __atomic_load_n(&mutexDepth, __ATOMIC_ACQUIRE) == 0) return;
  u32 const owner = __atomic_load_n(&mutexOwner, __ATOMIC_RELAXED);
  if (owner != tThreadUtility::getCurrentThreadId()) return;
  __atomic_store_n(&mutexDepth, mutexDepth - 1, __ATOMIC_RELAXED);
  lock->release();
}

}  // namespace nOXDIAG100
