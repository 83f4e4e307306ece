#pragma once

#include "oxdiagk/tConfigurationLock.h"
#include "vexkntos/tKernelMutexGuard.h"

namespace nOXDIAG100 {

// Holds the lock for a scope. IRQL <= APC_LEVEL.
class tConfigurationGuard {
 public:
  explicit tConfigurationGuard(tConfigurationLock& lock) : guard(mutexOf(lock)) {}

  // The mutex that lies in the lock.
  static KMUTEX& mutexOf(tConfigurationLock& lock) {
    static_assert(sizeof(lock.mutex) == sizeof(KMUTEX));
    static_assert(alignof(tConfigurationLock) == alignof(KMUTEX));
    return reinterpret_cast<KMUTEX&>(lock.mutex);
  }

 private:
  tKernelMutexGuard const guard;
};

}  // namespace nOXDIAG100
