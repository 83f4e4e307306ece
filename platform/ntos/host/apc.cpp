#include "currentThread.h"
#include "irqlCheck.h"
#include "ntos/irql.h"
#include "ntos/thread.h"
#include "ntoshost/thread.h"
#include "ntoshost/violation.h"

// What keeps APCs from a thread. There is one that comes here, see suspension.h.

namespace ntoshost {

namespace {

// Each is a critical region as well.
constinit thread_local u32 g_guardedRegions = 0;

constinit bool g_saysYesInRegions = false;

}  // namespace

bool areAllApcsDisabled() {
  return g_guardedRegions != 0 || KeGetCurrentIrql() >= APC_LEVEL;
}

void sayAllApcsDisabledInRegions(bool saysYes) {
  __atomic_store_n(&g_saysYesInRegions, saysYes, __ATOMIC_RELAXED);
}

}  // namespace ntoshost

void KeEnterGuardedRegion() {
  KeEnterCriticalRegion();
  ++ntoshost::g_guardedRegions;
}

void KeLeaveGuardedRegion() {
  ntoshost::requireIrqlAtMost(APC_LEVEL, "KeLeaveGuardedRegion");
  if (ntoshost::g_guardedRegions == 0) {
    ntoshost::violation(
        "KeLeaveGuardedRegion was called by a thread that is in no guarded region.");
  }
  --ntoshost::g_guardedRegions;
  KeLeaveCriticalRegion();
}

BOOLEAN KeAreApcsDisabled() {
  ntoshost::requireIrqlOnly(DISPATCH_LEVEL, "KeAreApcsDisabled");
  return ntoshost::g_words.countRegions() != 0 ? 1 : 0;
}

BOOLEAN KeAreAllApcsDisabled() {
  ntoshost::requireIrqlOnly(DISPATCH_LEVEL, "KeAreAllApcsDisabled");
  bool const saysYesInRegions = __atomic_load_n(&ntoshost::g_saysYesInRegions, __ATOMIC_RELAXED);
  if (saysYesInRegions && KeAreApcsDisabled() != 0) return 1;
  return ntoshost::areAllApcsDisabled() ? 1 : 0;
}
