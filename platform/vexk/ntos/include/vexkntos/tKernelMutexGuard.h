#pragma once

// Holds a kernel mutex for a scope. A thread that holds it may take it again; the IRQL stays as it
// is, so that files may be opened meanwhile. IRQL <= APC_LEVEL.

#include "ntos/mutex.h"
#include "ntos/wait.h"

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
