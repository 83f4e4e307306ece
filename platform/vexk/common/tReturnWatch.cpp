#include "vexkntos/tReturnWatch.h"

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "tSyncTable.h"
#include "vexk/debug.h"

tReturnWatch::tReturnWatch(char const* what, size_t length)
    : what(what), length(length), wasInRegion(KeAreApcsDisabled() != 0) {
}

tReturnWatch::~tReturnWatch() {
  if (!wasInRegion && KeAreApcsDisabled() != 0) report();
}

// A lock is in the table while it is held; its name stays as long as it is not closed.
void tReturnWatch::report() const {
  char lock[kSyncMaximumNameLength + 1] = "";
  bool const isLock = KeGetCurrentIrql() <= APC_LEVEL && vexSyncTable.findOwned(lock);
  int const shown = static_cast<int>(length);
  if (isLock) {
    ssprintf("[vexk] the request to %.*s returns while its thread holds the lock '%s'\n", shown,
             what, lock);
  } else {
    ssprintf("[vexk] the request to %.*s returns within a critical region\n", shown, what);
  }
}
