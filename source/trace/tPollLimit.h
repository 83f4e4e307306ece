#pragma once

#include "vexk/timerTimebase.h"

namespace nOXDIAG100 {

// How long a polling loop may go on: one millisecond, in counts of a timebase. Because the first
// count may be nearly over when it is taken, one step of the timebase is added, and another one
// when the timebase is so coarse that it cannot express the interval.
//
//     tPollLimit limit(resolution, tTimerTimebaseEfficient::getCounterValue());
//     while (!isReady()) {
//       if (limit.isReached(tTimerTimebaseEfficient::getCounterValue())) return false;
//     }
class tPollLimit {
 public:
  // `resolution.value` is at least 1 and `resolution.unit` one of tTimeUnit.
  tPollLimit(tTimebaseResolution const& resolution, u64 firstCount);

  // Adds the time since the count before, and tells whether the limit is reached. A count that has
  // gone backwards adds none.
  bool isReached(u64 count);

 private:
  u64 lastCount;
  u64 remainingCounts;
};

}  // namespace nOXDIAG100
