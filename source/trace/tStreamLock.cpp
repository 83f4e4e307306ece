#include "trace/tStreamLock.h"

#include "ntos/mutex.h"
#include "ntos/status.h"
#include "ntos/wait.h"
#include "oxdiagk/tTraceParts.h"
#include "trace/switchEvents.h"
#include "trace/tPatience.h"
#include "trace/tPutWatch.h"
#include "vexk/threadUtility.h"
#include "vexkntos/tCriticalRegionGuard.h"

namespace nOXDIAG100 {
namespace {

enum tState : u32 { kRaw, kInTheMaking, kReady };

// Made by the first who asks: a destination may leave before the first stream is built.
constinit KMUTEX mutex = {};
constinit u32 state = kRaw;
constinit u32 owner = 0;  // the thread that holds the mutex
constinit u32 depth = 0;

u32 getState() {
  return __atomic_load_n(&state, __ATOMIC_ACQUIRE);
}

void prepare() {
  if (getState() == kReady) return;
  tCriticalRegionGuard const region;
  u32 raw = kRaw;
  if (__atomic_compare_exchange_n(&state, &raw, kInTheMaking, false, __ATOMIC_ACQUIRE,
                                  __ATOMIC_RELAXED)) {
    KeInitializeMutex(&mutex, 0);
    __atomic_store_n(&state, kReady, __ATOMIC_RELEASE);
  }
  while (getState() != kReady) tPatience::pause();
}

bool isTakenInTime() {
  LARGE_INTEGER span;
  span.QuadPart = tPutWatch::kBetweenLooks * kTicksOfMillisecond;
  return KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, &span) != STATUS_TIMEOUT;
}

u32 getOwner() {
  return __atomic_load_n(&owner, __ATOMIC_RELAXED);
}

}  // namespace

bool tStreamLock::acquire() {
  prepare();
  tPutWatch watch;
  while (!isTakenInTime()) {
    u32 const thread = getOwner();
    watch.look(thread);
    if (!watch.hasPassed()) continue;
    logGivenUpConfiguration(thread);
    return false;
  }
  ++depth;
  __atomic_store_n(&owner, tThreadUtility::getCurrentThreadId(), __ATOMIC_RELAXED);
  return true;
}

void tStreamLock::release() {
  if (--depth == 0) __atomic_store_n(&owner, 0, __ATOMIC_RELAXED);
  KeReleaseMutex(&mutex, 0);
}

tStreamGuard::tStreamGuard(tTraceParts const& stream)
    : isOwner(tStreamLock::acquire()), isHeldOnStream(isOwner && stream.isBuilt()) {
}

}  // namespace nOXDIAG100
