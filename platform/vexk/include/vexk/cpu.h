#pragma once

// The processor.

#include "ntos/types.h"

// The processor's time stamp counter (RDTSC). Not serialising: neighbouring instructions may move
// across it. Any IRQL.
inline u64 vexReadTimeStampCounter() {
  return __builtin_ia32_rdtsc();
}
