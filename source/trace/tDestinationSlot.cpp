#include "oxdiagk/tDestinationSlot.h"

#include "ntos/irql.h"
#include "oxdiagk/iTraceDestination.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"
#include "vexkntos/tCriticalRegionGuard.h"

namespace nOXDIAG100 {

// A thread that is suspended within is one that nobody who waits for it sees the end of; so it is
// not, until it has left.
//
// The text is entered before it looks at the slot, and counts as one for any destination until it
// says for which. So whoever shuts the slot, or installs another destination, and then finds
// nobody, has nobody there.
void tDestinationSlot::send(char const* text, u32 length) {
  tCriticalRegionGuard const region;
  u32 const thread = tThreadUtility::getCurrentThreadId();
  u32 const place = tTextsOnTheWay::enter(thread, *this);
  if (place == tTextsOnTheWay::kNoPlace) return;
  iTraceDestination* const destination = isOpenTo(thread) ? get() : nullptr;
  if (destination != nullptr) {
    tTextsOnTheWay::direct(place, *destination);
    destination->put(text, length);
  }
  tTextsOnTheWay::leave(place);
}

// An interrupt that comes upon the thread of the switch is not part of the switch.
bool tDestinationSlot::isOpenTo(u32 thread) const {
  u32 const shutBy = loadOrdered(shutter);
  return shutBy == 0 || (shutBy == thread && KeGetCurrentIrql() < DISPATCH_LEVEL);
}

void tDestinationSlot::install(iTraceDestination& next) {
  isLeft = false;
  storeOrdered(current, &next);
}

void tDestinationSlot::shut(u32 holder) {
  holders |= holder;
  storeOrdered(shutter, tThreadUtility::getCurrentThreadId());
}

void tDestinationSlot::open(u32 holder) {
  holders &= ~holder;
  if (holders == 0) storeOrdered(shutter, 0);
}

}  // namespace nOXDIAG100
