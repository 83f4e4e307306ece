#include "trace/tDestinationSwitch.h"

#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/switchEvents.h"
#include "trace/tLiveStreams.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constinit tDestinationSwitch* innermost = nullptr;

iTraceDestination& getDebugger() {
  return tVEXTraceDestination::getInstance();
}

}  // namespace

tDestinationSwitch::tDestinationSwitch(tTraceParts& stream, iTraceDestination& next, bool isChanged)
    : stream(stream),
      former(stream.slot.get()),
      next(&next),
      isShared((isChanged || this->next == former) &&
               tLiveStreams::findKeeper(next, &stream) != nullptr),
      outer(innermost) {
  innermost = this;
}

tDestinationSwitch::~tDestinationSwitch() {
  innermost = outer;
}

// Lines first, so that nobody is within a line. Then nobody may be within a put before this thread
// writes its own line, or it would join those who do not come out; but it writes that line with the
// streams open, so that, should it not come out itself, the others still write. A stream whose line
// did not end is never shut: that line would lose what it writes meanwhile.
iTraceDestination* tDestinationSwitch::run() {
  if (isRefused()) return former;
  tPatience const patience;
  if (!holdLines(patience)) return giveUp();
  if (!isQuiet(patience)) return giveUp();
  hold.open();
  stream.announce("Switching trace destination to ", next->getDescription());
  tFormerSettings settings(*former);
  if (settings.hasFailed() && next != &getDebugger()) return announceUnchanged();
  if (!isQuiet(patience)) return giveUp();
  return change(settings);
}

// A put that switches its own destination would wait for itself.
bool tDestinationSwitch::isRefused() const {
  u32 const thread = tThreadUtility::getCurrentThreadId();
  return hold.isTooDeep() || tTextsOnTheWay::isWithin(thread, former) ||
         tTextsOnTheWay::isWithin(thread, next);
}

bool tDestinationSwitch::holdLines(tPatience const& patience) {
  if (!hold.holdLines(stream, patience)) return false;
  return !isShared || hold.holdLinesOfUsers(*next, patience);
}

bool tDestinationSwitch::isQuiet(tPatience const& patience) {
  hold.shut(stream);
  within = tStreamHold::awaitNobodyWithin(*former, &stream.slot, patience);
  if (within != 0 || !isShared) return within == 0;
  hold.shutUsers(*next);
  within = tStreamHold::awaitNobodyWithin(*next, nullptr, patience);
  return within == 0;
}

// A stream that ends says once whom it leaves behind, and not by every configuration that it
// restores: the event log has room for few.
iTraceDestination* tDestinationSwitch::giveUp() const {
  if (stream.isEnding && tPatience::isExhausted()) return former;
  if (within != 0) {
    logGivenUpSwitch(within);
  } else {
    logGivenUpSwitchBesideLine(hold.getLineOwner());
  }
  return former;
}

iTraceDestination* tDestinationSwitch::change(tFormerSettings& settings) {
  stream.slot.isOpenedWithin = false;
  closeFormer();
  if (next == nullptr) return fallBack(settings);
  moveTo(*next);
  if (!isNextOpen()) return fallBack(settings);
  stream.slot.hasTaken = true;
  stream.slot.isOpenedWithin = true;
  return former == nullptr ? &getDebugger() : former;
}

void tDestinationSwitch::closeFormer() {
  bool const isLast = tLiveStreams::findKeeper(*former, &stream) == nullptr;
  if (!isLast && next != former) return;
  stream.slot.isLeft = true;
  former->close();
}

// Other streams may have taken the destination, or left it, from a put or a close since it was
// looked who uses it.
bool tDestinationSwitch::isNextOpen() {
  bool const isUsed = tLiveStreams::findKeeper(*next, &stream) != nullptr;
  if (isShared && next == former) return open(next);
  if (isUsed) return !isShared || isNextOpenAnew();
  return openOrLeave(next);
}

// What other streams use comes back to them with its settings of before, if it can be opened at
// all.
bool tDestinationSwitch::isNextOpenAnew() {
  tFormerSettings settings(*next);
  if (settings.hasFailed()) return false;
  next->close();
  if (next != nullptr && open(next)) return true;
  if (next != nullptr) settings.restore(*next);
  if (next != nullptr) openOrLeave(next);
  return false;
}

// A switch within open() may have left the destination for another one, or destroyed it.
bool tDestinationSwitch::open(iTraceDestination* const& place) {
  bool const isOpen = place->open() != 0 && place != nullptr;
  if (isOpen && tLiveStreams::findKeeper(*place) == nullptr) place->close();
  return isOpen;
}

// Who uses a destination that does not open goes to the debugger; the stream itself goes elsewhere.
bool tDestinationSwitch::openOrLeave(iTraceDestination* const& place) {
  if (open(place)) return true;
  if (place != nullptr) sendToDebugger(*place);
  return false;
}

// The stream may be elsewhere than this switch has left it, through one within. What was opened
// there is closed first.
void tDestinationSwitch::moveTo(iTraceDestination& place) {
  closeOpened(stream);
  stream.slot.isOpenedWithin = false;
  stream.slot.install(place);
}

// A close may switch the stream once more, but not without end.
void tDestinationSwitch::closeOpened(tTraceParts& stream) {
  for (u32 count = 0; count < tStreamHold::kMostWithinEachOther; ++count) {
    if (!stream.slot.isOpenedWithin) return;
    stream.slot.isOpenedWithin = false;
    iTraceDestination* const left = stream.slot.get();
    if (tLiveStreams::findKeeper(*left, &stream) != nullptr) return;
    stream.slot.isLeft = true;
    left->close();
  }
}

iTraceDestination* tDestinationSwitch::fallBack(tFormerSettings& settings) {
  if (former != nullptr && isFormerBack(settings)) return announceUnchanged();
  moveTo(getDebugger());
  getDebugger().open();
  hold.open();
  announceDebugger(stream);
  return &getDebugger();
}

bool tDestinationSwitch::isFormerBack(tFormerSettings& settings) {
  moveTo(*former);
  if (next != former && tLiveStreams::findKeeper(*former, &stream) != nullptr) return true;
  settings.restore(*former);
  bool const isBack = former != nullptr && openOrLeave(former);
  stream.slot.isOpenedWithin |= isBack;
  return isBack;
}

iTraceDestination* tDestinationSwitch::announceUnchanged() {
  hold.open();
  stream.announce("Trace destination couldn't be opened!");
  stream.announce("Trace destination remains unchanged.");
  return former;
}

void tDestinationSwitch::announceDebugger(tTraceParts& stream) {
  stream.announce(
      "Trace destination couldn't be opened and previous destination couldn't be restored!");
  stream.announce("The trace destination has been changed to VEX print to debugger by default");
}

void tDestinationSwitch::sendToDebugger(iTraceDestination const& closed) {
  while (tTraceParts* const user = tLiveStreams::findUser(closed, &stream)) {
    user->slot.install(getDebugger());
    announceDebugger(*user);
  }
}

void tDestinationSwitch::forget(iTraceDestination const& leaving) {
  for (tDestinationSwitch* each = innermost; each != nullptr; each = each->outer) {
    if (each->former == &leaving) each->former = nullptr;
    if (each->next == &leaving) each->next = nullptr;
  }
}

}  // namespace nOXDIAG100
