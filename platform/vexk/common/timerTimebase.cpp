#include "vexk/timerTimebase.h"

#include "ntos/time.h"

namespace {

constexpr u64 kPicosecondsPerSecond = 1'000'000'000'000;
constexpr u64 kPicoseconds[kTimeUnitCount] = {1,
                                              kPicosecondsPerSecond / 1'000'000'000,
                                              kPicosecondsPerSecond / 1'000'000,
                                              kPicosecondsPerSecond / 1000,
                                              kPicosecondsPerSecond,
                                              kPicosecondsPerSecond * 60,
                                              kPicosecondsPerSecond * 3600};

constexpr tTimeRatio ratioOf(u32 from, u32 to) {
  if (from >= to) return {kPicoseconds[from] / kPicoseconds[to], 1};
  return {1, kPicoseconds[to] / kPicoseconds[from]};
}

tTimebaseResolution getResolution() {
  LARGE_INTEGER countsPerSecond;
  KeQueryPerformanceCounter(&countsPerSecond);
  return tTimebaseResolution::ofFrequency(static_cast<u64>(countsPerSecond.QuadPart));
}

}  // namespace

u64 tTimerTimebaseEfficient::getCounterValue() {
  return static_cast<u64>(KeQueryPerformanceCounter(nullptr).QuadPart);
}

u64 tTimerTimebaseEfficient::getResolutionValue() {
  return getResolution().value;
}

u32 tTimerTimebaseEfficient::getResolutionTimeUnit() {
  return getResolution().unit;
}

#define RATIOS_FROM(from)                                                                     \
  {                                                                                           \
    ratioOf(from, 0), ratioOf(from, 1), ratioOf(from, 2), ratioOf(from, 3), ratioOf(from, 4), \
        ratioOf(from, 5), ratioOf(from, 6)                                                    \
  }

constinit tTimeRatio const tTimerUtility::conversionTable[kTimeUnitCount][kTimeUnitCount] = {
    RATIOS_FROM(0), RATIOS_FROM(1), RATIOS_FROM(2), RATIOS_FROM(3),
    RATIOS_FROM(4), RATIOS_FROM(5), RATIOS_FROM(6)};
