// Apart from the other bodies of the interface: only this one needs the trace streams.

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
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

}  // namespace

// The memory of a destination must stay as long as a thread is within its put, however long that
// is. But that is this caller's wait: the streams and their lock are free meanwhile.
void iTraceDestination::leaveStream() {
  while (!tStreamLock::acquire()) {
  }
  bool const isClosed = tTrace::takeOffStreams(*this);
  tStreamLock::release();
  while (findOther(*this) != 0) tPatience::pause();
  if (!isClosed) close();
}

bool tTrace::takeOffStreams(iTraceDestination& leaving) {
  tPatienceScope const patienceOfAll;
  bool isClosed = true;
  tDestinationSwitch::forget(leaving);
  while (tTrace* const user = tLiveStreams::findUser(leaving)) {
    if (!user->isTakenOff(leaving)) isClosed = false;
  }
  return isClosed;
}

bool tTrace::isTakenOff(iTraceDestination& leaving) {
  // As words, because splitting a text takes memory, and there may be none.
  char option[] = "--destination";
  char name[] = "vex";
  char* words[] = {option, name};
  configure(2, words);
  if (getDestination() != &leaving) return true;
  slot.install(tVEXTraceDestination::getInstance());
  logForcedLeave(findOther(leaving));
  tPatience::setExhausted(true);
  return false;
}

bool mayEnd(iTraceDestination const& destination) {
  if (!tStreamLock::acquire()) return false;
  u32 const within = tStreamHold::awaitNobodyWithin(destination, nullptr, tPatience());
  tStreamLock::release();
  if (within != 0) logGivenUpEnd(within);
  return within == 0;
}

}  // namespace nOXDIAG100
