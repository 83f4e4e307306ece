#pragma once

// The processor.

#include "compiler/compiler.h"
#include "compiler/types.h"

// The processor's time stamp counter (RDTSC). Not serialising: neighbouring instructions may move
// across it. Any IRQL.
inline u64 vexReadTimeStampCounter() {
  return nCompiler::readTimeStampCounter();
}
