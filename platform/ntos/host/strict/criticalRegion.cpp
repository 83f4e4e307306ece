#include "irqlCheck.h"
#include "ntos/thread.h"
#include "ntoshost/violation.h"
#include "wait/heldLocks.h"

// There are no APCs: a region is something to be left again.

void KeEnterCriticalRegion() {
  ntoshost::requireIrqlAtMost(APC_LEVEL, "KeEnterCriticalRegion");
  ntoshost::noteRegionEntered();
}

void KeLeaveCriticalRegion() {
  ntoshost::requireIrqlAtMost(APC_LEVEL, "KeLeaveCriticalRegion");
  if (ntoshost::noteRegionLeft()) return;
  ntoshost::violation(
      "KeLeaveCriticalRegion was called by a thread that is in no critical region.");
}
