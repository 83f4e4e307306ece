#pragma once

// Holds a fast mutex for a scope: from construction to destruction the thread owns it and runs at
// APC_LEVEL. IRQL <= APC_LEVEL.

#include "ntos/fastMutex.h"

class tFastMutexGuard {
 public:
  explicit tFastMutexGuard(FAST_MUTEX& fastMutex) : mutex(fastMutex) { ExAcquireFastMutex(&mutex); }
  ~tFastMutexGuard() { ExReleaseFastMutex(&mutex); }
  tFastMutexGuard(tFastMutexGuard const&) = delete;
  tFastMutexGuard& operator=(tFastMutexGuard const&) = delete;

 private:
  FAST_MUTEX& mutex;
};
