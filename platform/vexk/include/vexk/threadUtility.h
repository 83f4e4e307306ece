#pragma once

// The calling thread.

#include "compiler/types.h"
#include "vexk/api.h"

class tThreadUtility {
 public:
  // The system's id of the calling thread (the low 32 bits, which is all there are). Unique among
  // the threads that live; never 0. Any IRQL.
  static VEX_API u32 getCurrentThreadId();
};
