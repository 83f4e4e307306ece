#include "vexk/threadUtility.h"

#include "ntos/thread.h"

u32 tThreadUtility::getCurrentThreadId() {
  return static_cast<u32>(reinterpret_cast<uintptr_t>(PsGetCurrentThreadId()));
}
