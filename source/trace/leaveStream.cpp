// Apart from the other bodies of the interface: only this one needs the trace stream.

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

void iTraceDestination::leaveStream() {
  tTrace::getInstance().leave(*this);
}

// Under the lock, so that no switch under way still has the destination in its hands. A stream that
// is not there has no lock, and no destination either.
void tTrace::leave(iTraceDestination& leaving) {
  if (getDestination() == nullptr) return;
  tConfigurationGuard const guard(configurationLock);
  if (getDestination() != &leaving) return;
  // As words, because splitting a text takes memory, and there may be none.
  char option[] = "--destination";
  char name[] = "vex";
  char* words[] = {option, name};
  configure(2, words);
}

}  // namespace nOXDIAG100
