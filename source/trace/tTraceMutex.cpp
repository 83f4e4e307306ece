#include "oxdiagk/tTrace.h"
#include "trace/tStreamLock.h"
#include "vexk/statusCodes.h"
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
  while (getLineOwner() == tThreadUtility::getCurrentThreadId()) endLine();
  syncClose(mutexObject);
}

void tTrace::enableMutex() {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  openMutex();
  tSyncLock const lock(mutexObject);
  store(mutex, 1);
}

void tTrace::disableMutex() {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
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

tTrace::tLineStart tTrace::beginLine(u32 timeout) {
  if (load(mutex) == 0) return kLineIsNotLocked;
  iSync* const lock = getMutex();
  i32 const status = lock == nullptr ? kStatusSyncFailed : lock->acquire(timeout);
  if (status < 0) return status == kStatusSyncTimeout ? kLineTimedOut : kLineIsNotLocked;
  __atomic_store_n(&mutexOwner, tThreadUtility::getCurrentThreadId(), __ATOMIC_RELAXED);
  __atomic_store_n(&mutexDepth, mutexDepth + 1, __ATOMIC_RELEASE);
  return kLineIsLocked;
}

u32 tTrace::getLineOwner() const {
  if (__atomic_load_n(&mutexDepth, __ATOMIC_ACQUIRE) == 0) return 0;
  return __atomic_load_n(&mutexOwner, __ATOMIC_RELAXED);
}

void tTrace::endLine() {
  iSync* const lock = getMutex();
  if (lock == nullptr || getLineOwner() != tThreadUtility::getCurrentThreadId()) return;
  __atomic_store_n(&mutexDepth, mutexDepth - 1, __ATOMIC_RELAXED);
  lock->release();
}

}  // namespace nOXDIAG100
