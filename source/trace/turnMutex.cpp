#include "trace/turnMutex.h"

#include "oxdiagk/tTraceParts.h"
#include "trace/switchEvents.h"
#include "trace/tLiveStreams.h"
#include "trace/tPatience.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kBetweenLooks = 100;  // milliseconds

// A line whose put does not come out does not end. The thread of such a line, or 0.
u32 findStuck(tTraceParts const& stream) {
  u32 const owner = tLiveStreams::findLineOwner(stream);
  return tTextsOnTheWay::isWithin(owner, nullptr) ? owner : 0;
}

// Waits for the stream's lock. Who turns the switch does it under the streams' lock: others wait
// for that one, the end of the module among them, so the wait for a stuck line is given up.
i32 await(iSync& lock, tTraceParts const& stream) {
  tPatience const patience;
  for (;;) {
    i32 const status = lock.acquire(kBetweenLooks);
    if (status != kStatusSyncTimeout) return status;
    patience.addWait(kBetweenLooks);
    u32 const stuck = patience.isOver() ? findStuck(stream) : 0;
    if (stuck == 0) continue;
    logGivenUpMutex(stuck);
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
