#include "ntos/time.h"

#include <time.h>

namespace {
constexpr i64 kTicksPerSecond = 10'000'000;
constexpr i64 kNanosecondsPerTick = 100;
constexpr i64 kSecondsFrom1601To1970 = 11'644'473'600;

i64 ticksOf(timespec const& time) {
  return time.tv_sec * kTicksPerSecond + time.tv_nsec / kNanosecondsPerTick;
}

}  // namespace

LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency) {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  if (frequency != nullptr) frequency->QuadPart = kTicksPerSecond;
  LARGE_INTEGER ticks;
  ticks.QuadPart = ticksOf(now);
  return ticks;
}

void KeQuerySystemTime(LARGE_INTEGER* time) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  now.tv_sec += kSecondsFrom1601To1970;
  time->QuadPart = ticksOf(now);
}
