#pragma once

// The calling thread.

#include "compiler/types.h"
#include "vexk/api.h"

class tThreadUtility {
 public:
  // The system's id of the calling thread (the low 32 bits, which is all there are). Unique among
  // the threads that live; never 0. Any IRQL.
  //
  // On Windows the thread that a processor idles in has the system's id 0, as has that of every
  // other processor; an interrupt may come upon it. Here its id is 1 on the first processor, 5 on
  // the second, then 9, and so on. Those of all other threads are multiples of 4 there.
  static VEX_API u32 getCurrentThreadId();
};
