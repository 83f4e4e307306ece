#pragma once

#include "oxdiagk/tTrace.h"
#include "tNullDestination.h"

// A trace stream of the benchmarks' own, with the settings of a fresh one, over a destination that
// does nothing.
class tBenchStream : public nOXDIAG100::tTrace {
 public:
  explicit tBenchStream(tNullDestination& destination) : tTrace(destination) {}
};
