#include "trace/destinationSwitches.h"

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTraceParts.h"
#include "trace/switchEvents.h"
#include "trace/tDestinationSwitch.h"
#include "trace/tStreamLock.h"

namespace nOXDIAG100 {

iTraceDestination* switchTo(tTraceParts& stream, iTraceDestination& next, bool isChanged) {
  tStreamGuard const guard(stream);
  return guard.isHeld() ? tDestinationSwitch(stream, next, isChanged).run() : stream.slot.get();
}

bool configureDestination(iTraceDestination& chosen, int argc, char** argv) {
  tPatience const patience;
  tStreamHold hold;
  if (hold.isTooDeep()) return false;
  if (!hold.holdLinesOfUsers(chosen, patience)) {
    logGivenUpSwitchBesideLine(hold.getLineOwner());
    return false;
  }
  hold.shutUsers(chosen);
  u32 const within = tStreamHold::awaitNobodyWithin(chosen, nullptr, patience);
  if (within != 0) {
    logGivenUpSwitch(within);
    return false;
  }
  chosen.configure(argc, argv);
  return true;
}

bool awaitTexts(tTraceParts& stream) {
  tStreamHold hold;
  hold.shut(stream);
  u32 const within = tStreamHold::awaitNobodyWithin(*stream.slot.get(), &stream.slot, tPatience());
  if (within == 0) return true;
  if (!tPatience::isExhausted()) logGivenUpEnd(within);
  tPatience::setExhausted(true);
  return false;
}

// What the stream of the module has taken is destroyed by the module, or has gone with its driver.
void leaveDestination(tTraceParts& stream, bool mayClose) {
  bool const closes = stream.slot.hasTaken && mayClose;
  if (!awaitTexts(stream) || !closes) return;
  stream.slot.isOpenedWithin = true;
  tDestinationSwitch::closeOpened(stream);
}

}  // namespace nOXDIAG100
