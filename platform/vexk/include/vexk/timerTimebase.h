#pragma once

// Elapsed time, cheaply, and the ratios between units of time.
//
// Units of time are numbered from the finest to the coarsest: 0 picosecond, 1 nanosecond,
// 2 microsecond, 3 millisecond, 4 second, 5 minute, 6 hour.

#include "compiler/types.h"
#include "vexk/api.h"

enum tTimeUnit : u32 {
  kTimePicosecond = 0,
  kTimeNanosecond = 1,
  kTimeMicrosecond = 2,
  kTimeMillisecond = 3,
  kTimeSecond = 4,
  kTimeMinute = 5,
  kTimeHour = 6,
};
constexpr u32 kTimeUnitCount = 7;

// The system's performance counter. It counts up at a constant rate, the same on every processor;
// what one count is worth never changes while the system runs. Any IRQL, any thread.
//
//     u64 const start = tTimerTimebaseEfficient::getCounterValue();
//     ...
//     u64 const elapsed = (tTimerTimebaseEfficient::getCounterValue() - start) *
//                         tTimerTimebaseEfficient::getResolutionValue();  // in resolution units
class tTimerTimebaseEfficient {
 public:
  // The counter now.
  static VEX_API u64 getCounterValue();

  // What one count is worth: this many (at least 1) ...
  static VEX_API u64 getResolutionValue();

  // ... of this tTimeUnit: the coarsest unit up to the second that says it exactly, or picoseconds,
  // rounded to the nearest, when none does.
  static VEX_API u32 getResolutionTimeUnit();
};

// What one count of a counter with `countsPerSecond` counts is worth. 0 counts as 1.
struct tTimebaseResolution {
  u64 value;
  u32 unit;

  static constexpr tTimebaseResolution ofFrequency(u64 countsPerSecond);
};

// A ratio of two units: time in the one, times numerator, divided by denominator, is time in the
// other. One of the two numbers is 1.
struct tTimeRatio {
  u64 numerator;
  u64 denominator;
};

class tTimerUtility {
 public:
  // conversionTable[from][to], by tTimeUnit. A product may pass 64 bits: an hour has 3.6e15
  // picoseconds.
  static VEX_API tTimeRatio const conversionTable[kTimeUnitCount][kTimeUnitCount];
};

constexpr tTimebaseResolution tTimebaseResolution::ofFrequency(u64 countsPerSecond) {
  u64 const counts = countsPerSecond == 0 ? 1 : countsPerSecond;
  u64 unitsPerSecond = 1;
  for (u32 unit = kTimeSecond + 1; unit-- > kTimePicosecond; unitsPerSecond *= 1000) {
    if (unitsPerSecond % counts == 0) return {unitsPerSecond / counts, unit};
  }
  u64 const picosecondsPerSecond = unitsPerSecond / 1000;
  u64 const rounded = (picosecondsPerSecond + counts / 2) / counts;
  return {rounded == 0 ? 1 : rounded, kTimePicosecond};
}
