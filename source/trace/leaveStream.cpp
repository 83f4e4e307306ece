// Apart from the other bodies of the interface: only this one needs the trace streams.

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/destinationSwitches.h"
#include "trace/mayEnd.h"
#include "trace/switchEvents.h"
#include "trace/tDestinationSwitch.h"
#include "trace/tLiveStreams.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

u32 findOther(iTraceDestination const& destination) {
  return tTextsOnTheWay::findOther(tThreadUtility::getCurrentThreadId(), destination, nullptr);
}

// False when a thread may still be within the destination, and it was not closed.
bool isTakenOff(tTraceParts& stream, iTraceDestination& leaving) {
  switchTo(stream, tVEXTraceDestination::getInstance(), false);
  if (stream.slot.get() != &leaving) return true;
  stream.slot.install(tVEXTraceDestination::getInstance());
  u32 const within = findOther(leaving);
  if (within != 0) logForcedLeave(within);
  tPatience::setExhausted(true);
  return false;
}

// Sends all streams that use a destination back to the debugger. False as isTakenOff.
bool takeOffStreams(iTraceDestination& leaving) {
  tPatienceScope const patienceOfAll;
  bool isClosed = true;
  tDestinationSwitch::forget(leaving);
  while (tTraceParts* const user = tLiveStreams::findUser(leaving)) {
    if (!isTakenOff(*user, leaving)) isClosed = false;
  }
  return isClosed;
}

}  // namespace

// The memory of a destination must stay as long as a thread is within its put, however long that
// is. But that is this caller's wait: the streams and their lock are free meanwhile.
void iTraceDestination::leaveStream() {
  while (!tStreamLock::acquire()) {
  }
  bool const isClosed = takeOffStreams(*this);
  tStreamLock::release();
  while (findOther(*this) != 0) tPatience::pause();
  if (!isClosed) close();
}

bool mayEnd(iTraceDestination const& destination) {
  if (!tStreamLock::acquire()) return false;
  u32 const within = tStreamHold::awaitNobodyWithin(destination, nullptr, tPatience());
  tStreamLock::release();
  if (within != 0) logGivenUpEnd(within);
  return within == 0;
}

}  // namespace nOXDIAG100
