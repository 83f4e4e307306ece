#pragma once

// Holds a kernel mutex for a scope. IRQL <= APC_LEVEL.

#include "ntos/mutex.h"
#include "ntos/wait.h"

namespace nOXDIAG100 {

class tKernelMutexGuard {
 public:
  explicit tKernelMutexGuard(KMUTEX& kernelMutex) : mutex(kernelMutex) {
    KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, nullptr);
  }
  ~tKernelMutexGuard() { KeReleaseMutex(&mutex, 0); }
  tKernelMutexGuard(tKernelMutexGuard const&) = delete;
  tKernelMutexGuard& operator=(tKernelMutexGuard const&) = delete;

 private:
  KMUTEX& mutex;
};

}  // namespace nOXDIAG100
