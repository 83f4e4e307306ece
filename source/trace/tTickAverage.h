#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// The average of kSampleCount measurements, in counter ticks. A measurement is made by several
// tries of which the shortest counts: an interrupt, or code that is not in the cache yet, lengthens
// a try, and nothing shortens one.
class tTickAverage {
 public:
  static constexpr u64 kSampleCount = 25;

  void addTry(u64 ticks) {
    if (ticks < shortest) shortest = ticks;
  }

  // Ends a measurement. To be called kSampleCount times, each time after a try.
  void endSample() {
    sum += shortest;
    shortest = kNothing;
  }

  u64 get() const { return sum / kSampleCount; }

 private:
  static constexpr u64 kNothing = ~0ull;

  u64 shortest = kNothing;
  u64 sum = 0;
};

}  // namespace nOXDIAG100
