#include "oxdiagk/tTrace.h"
#include "trace/switchEvents.h"
#include "trace/tLiveStreams.h"
#include "trace/tPatience.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kBetweenLooks = 100;  // milliseconds

// A line whose put does not come out does not end.
bool isLineStuck() {
  u32 const owner = tLiveStreams::findLineOwner();
  return owner != 0 && tTextsOnTheWay::isWithin(owner, nullptr);
}

// The line lock, held for a scope by who switches the mutex under the streams' lock: others wait
// for that one, the end of the module among them, so the wait for a stuck line is given up.
class tSwitchLock {
 public:
  explicit tSwitchLock(iSync* lock) : lock(lock), status(lock == nullptr ? 0 : await(*lock)) {}
  ~tSwitchLock() {
    if (lock != nullptr && status >= 0) lock->release();
  }
  tSwitchLock(tSwitchLock const&) = delete;
  tSwitchLock& operator=(tSwitchLock const&) = delete;

  bool isGivenUp() const { return status == kStatusSyncTimeout; }

 private:
  static i32 await(iSync& lock) {
    tPatience const patience;
    for (;;) {
      i32 const status = lock.acquire(kBetweenLooks);
      if (status != kStatusSyncTimeout) return status;
      if (!patience.isOver() || !isLineStuck()) continue;
      logGivenUpMutex(tLiveStreams::findLineOwner());
      return status;
    }
  }

  iSync* const lock;
  i32 const status;
};

}  // namespace

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
  tSwitchLock const lock(mutexObject);
  if (!lock.isGivenUp()) store(mutex, 1);
}

void tTrace::disableMutex() {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  tSwitchLock const lock(mutexObject);
  if (!lock.isGivenUp()) store(mutex, 0);
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
