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
  mutexObject = syncOpen("nOXDIAG100::tTrace::_mutex", descriptor, status);
}

void tTrace::closeMutex() {
  while (mutexDepth != 0 && mutexOwner == tThreadUtility::getCurrentThreadId()) endLine();
  syncClose(mutexObject);
}

void tTrace::enableMutex() {
  openMutex();
  tSyncLock const lock(mutexObject);
  mutex = 1;
}

void tTrace::disableMutex() {
  tSyncLock const lock(mutexObject);
  mutex = 0;
}

u32 tTrace::mutexIsEnabled() const {
  return mutex;
}

void tTrace::beginLine() {
  if (mutex == 0 || mutexObject == nullptr) return;
  if (mutexObject->acquire(kSyncWaitForever) < 0) return;
  __atomic_store_n(&mutexOwner, tThreadUtility::getCurrentThreadId(), __ATOMIC_RELAXED);
  __atomic_store_n(&mutexDepth, mutexDepth + 1, __ATOMIC_RELEASE);
}

void tTrace::endLine() {
  if (mutexObject == nullptr || __atomic_load_n(&mutexDepth, __ATOMIC_ACQUIRE) == 0) return;
  u32 const owner = __atomic_load_n(&mutexOwner, __ATOMIC_RELAXED);
  if (owner != tThreadUtility::getCurrentThreadId()) return;
  __atomic_store_n(&mutexDepth, mutexDepth - 1, __ATOMIC_RELAXED);
  mutexObject->release();
}

}  // namespace nOXDIAG100
