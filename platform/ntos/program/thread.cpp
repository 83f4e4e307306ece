#include "ntos/thread.h"

#include "system.h"

HANDLE PsGetCurrentThreadId() {
  return reinterpret_cast<HANDLE>(ntosprogram::getThreadId());
}

u32 KeGetCurrentProcessorNumberEx(_PROCESSOR_NUMBER*) {
  return ntosprogram::getProcessorNumber();
}

BOOLEAN KeAreApcsDisabled() {
  return 0;
}

BOOLEAN KeAreAllApcsDisabled() {
  return 0;
}
