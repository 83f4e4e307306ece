#include "trace/tPollLimit.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kLimitUnit = kTimeMillisecond;

// The limit in the timebase's own unit. In a coarser one the interval is 0, and the limit two
// steps.
u64 limitOf(tTimebaseResolution const& resolution) {
  tTimeRatio const& ratio = tTimerUtility::conversionTable[kLimitUnit][resolution.unit];
  u64 const interval = ratio.numerator / ratio.denominator;
  u64 limit = interval + resolution.value;
  if (resolution.unit > kLimitUnit) limit += resolution.value;
  return limit < interval ? interval : limit;
}

// Counts are compared, not times: a long wait cannot overflow them.
u64 countsOf(u64 time, u64 timeOfOneCount) {
  return time / timeOfOneCount + (time % timeOfOneCount == 0 ? 0 : 1);
}

}  // namespace

tPollLimit::tPollLimit(tTimebaseResolution const& resolution, u64 firstCount)
    : lastCount(firstCount), remainingCounts(countsOf(limitOf(resolution), resolution.value)) {
}

bool tPollLimit::isReached(u64 count) {
  u64 const elapsed = count > lastCount ? count - lastCount : 0;
  lastCount = count;
  remainingCounts = elapsed < remainingCounts ? remainingCounts - elapsed : 0;
  return remainingCounts == 0;
}

}  // namespace nOXDIAG100
