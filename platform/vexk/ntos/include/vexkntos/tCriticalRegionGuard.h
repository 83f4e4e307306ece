#pragma once

// Keeps the thread from being suspended for a scope: for whoever counts itself where others wait
// for it, or holds what others wait for. At DISPATCH_LEVEL and above no thread is suspended, and
// the guard does nothing. The IRQL at its end is that of its beginning. Any IRQL.

#include "ntos/irql.h"
#include "ntos/thread.h"

class tCriticalRegionGuard {
 public:
  tCriticalRegionGuard() : isEntered(KeGetCurrentIrql() <= APC_LEVEL) {
    if (isEntered) KeEnterCriticalRegion();
  }
  ~tCriticalRegionGuard() {
    if (isEntered) KeLeaveCriticalRegion();
  }
  tCriticalRegionGuard(tCriticalRegionGuard const&) = delete;
  tCriticalRegionGuard& operator=(tCriticalRegionGuard const&) = delete;

 private:
  bool const isEntered;
};
