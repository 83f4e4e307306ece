#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "trace/switchEvents.h"
#include "trace/tDestinationSwitch.h"
#include "trace/tLiveStreams.h"
#include "trace/tStreamLock.h"

namespace nOXDIAG100 {

iTraceDestination* tTrace::setDestination(iTraceDestination& next) {
  return switchTo(next, false);
}

iTraceDestination* tTrace::switchTo(iTraceDestination& next, bool isChanged) {
  tStreamGuard const guard(*this);
  return guard.isHeld() ? tDestinationSwitch(*this, next, isChanged).run() : getDestination();
}

bool tTrace::configureDestination(iTraceDestination& chosen, int argc, char** argv) {
  tPatience const patience;
  tStreamHold hold;
  if (hold.isTooDeep()) return false;
  bool const areLinesHeld = hold.holdLinesOfUsers(chosen, patience);
  hold.shutUsers(chosen);
  u32 const within = tStreamHold::awaitNobodyWithin(chosen, nullptr, patience);
  if (within != 0 || !areLinesHeld) {
    logGivenUpSwitch(within);
    return false;
  }
  chosen.configure(argc, argv);
  return true;
}

bool tTrace::awaitTexts() {
  tStreamHold hold;
  hold.shut(*this);
  u32 const within = tStreamHold::awaitNobodyWithin(*getDestination(), &slot, tPatience());
  if (within == 0) return true;
  if (!tPatience::isExhausted()) logGivenUpEnd(within);
  tPatience::setExhausted(true);
  return false;
}

// What the stream of the module has taken is destroyed by the module, or has gone with its driver.
void tTrace::leaveDestination() {
  bool const isLast = tLiveStreams::findUser(*getDestination(), this) == nullptr;
  bool const closes = slot.hasTaken && isLast && this != &getInstance();
  if (awaitTexts() && closes) getDestination()->close();
}

// Within a line that is not shown, the text goes past the line buffer: it is a line of its own, and
// the rest of the other one stays hidden.
void tTrace::announce(char const* text, char const* rest) {
  char const* const pieces[] = {text, rest, "\n"};
  for (char const* const piece : pieces) {
    u32 const length = static_cast<u32>(__builtin_strlen(piece));
    if (isWriting()) {
      append(piece, length);
    } else if (load(enabled) != 0 && length != 0) {
      slot.send(piece, length);
    }
  }
  setLastLineTime(readTimeStampCounter());
}

}  // namespace nOXDIAG100
