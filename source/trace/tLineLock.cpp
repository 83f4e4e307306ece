#include "oxdiagk/tLineLock.h"

#include "oxdiagk/atomicWord.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {

void tLineLock::open() {
  if (sync != nullptr) return;
  tSyncDescriptor descriptor;
  if (token[0] != 0 || token[1] != 0) {
    descriptor.kind = kSyncKindTokenMutex;
    descriptor.token[0] = token[0];
    descriptor.token[1] = token[1];
  }
  openedBy[0] = token[0];
  openedBy[1] = token[1];
  i32 status = 0;
  iSync* const opened = syncOpen("nOXDIAG100::tTrace::_mutex", descriptor, status);
  storeRelease(sync, opened);
}

void tLineLock::close() {
  while (getOwner() == tThreadUtility::getCurrentThreadId()) giveBack();
  syncClose(sync);
}

tLineLock::tStart tLineLock::begin(u32 timeout) {
  iSync* const lock = get();
  if (lock == nullptr) return kNotLocked;
  i32 const status = lock->acquire(timeout);
  if (status < 0) return status == kStatusSyncTimeout ? kTimedOut : kNotLocked;
  storeRelaxed(owner, tThreadUtility::getCurrentThreadId());
  storeRelease(depth, depth + 1);
  return kLocked;
}

u32 tLineLock::getOwner() const {
  return loadAcquire(depth) == 0 ? 0 : loadRelaxed(owner);
}

void tLineLock::giveBack() {
  if (getOwner() != tThreadUtility::getCurrentThreadId()) return;
  storeRelaxed(depth, depth - 1);
  get()->release();
}

}  // namespace nOXDIAG100
