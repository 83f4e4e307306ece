#include "trace/turnMutex.h"

#include "oxdiagk/tTraceParts.h"
#include "trace/switchEvents.h"
#include "trace/tLiveStreams.h"
#include "trace/tPutWatch.h"
#include "trace/tStreamLock.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {
namespace {

// Waits for the stream's lock. Who turns the switch does it under the streams' lock: others wait
// for that one, the end of the module among them, so the wait for a stuck line is given up.
i32 await(iSync& lock, tTraceParts const& stream) {
  tPutWatch watch;
  for (;;) {
    i32 const status = lock.acquire(tPutWatch::kBetweenLooks);
    if (status != kStatusSyncTimeout) return status;
    u32 const owner = tLiveStreams::findLineOwner(stream);
    watch.look(owner);
    if (!watch.isOver()) continue;
    logGivenUpMutex(owner);
    return status;
  }
}

}  // namespace

// At its end a stream has closed the lock. A saved configuration that is restored then neither
// opens it again nor waits for whoever still has it.
void turnMutex(tTraceParts& stream, bool isOn) {
  tStreamGuard const guard(stream);
  if (!guard.isHeld() || stream.isEnding) return;
  if (isOn) stream.lock.open();
  iSync* const lock = stream.lock.get();
  i32 const status = lock == nullptr ? 0 : await(*lock, stream);
  if (status != kStatusSyncTimeout) stream.turn(tLineShape::kMutex, isOn);
  if (lock != nullptr && status >= 0) lock->release();
}

}  // namespace nOXDIAG100
