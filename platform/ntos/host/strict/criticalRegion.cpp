#include "irqlCheck.h"
#include "ntos/thread.h"
#include "ntoshost/violation.h"
#include "suspension.h"
#include "wait/heldLocks.h"

namespace ntoshost {

constinit thread_local ThreadWords g_words = {0, ThreadWords::kWatched, PASSIVE_LEVEL};

void enterWatchedRegion() {
  requireIrqlAtMost(APC_LEVEL, "KeEnterCriticalRegion");
  noteRegionEntered();
}

void leaveWatchedRegion() {
  requireIrqlAtMost(APC_LEVEL, "KeLeaveCriticalRegion");
  if (!noteRegionLeft()) {
    violation("KeLeaveCriticalRegion was called by a thread that is in no critical region.");
  }
  takeSuspension();
}

}  // namespace ntoshost
