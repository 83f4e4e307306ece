#include "ntos/time.h"

#include <time.h>

namespace {
constexpr i64 kTicksPerSecond = 10'000'000;
constexpr i64 kNanosecondsPerTick = 100;
}  // namespace

LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency) {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  if (frequency != nullptr) frequency->QuadPart = kTicksPerSecond;
  LARGE_INTEGER ticks;
  ticks.QuadPart = now.tv_sec * kTicksPerSecond + now.tv_nsec / kNanosecondsPerTick;
  return ticks;
}
