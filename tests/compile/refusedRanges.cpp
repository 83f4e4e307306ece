// Ranges of numbers that their type does not hold.

#include "oxdiagk/tBoundedRangeReportable.h"

using namespace nOXDIAG100;

u32 ranges(tStatus2& status, i32 lowest) {
  tBoundedRangeReportable<u32> const negative(-1, 99, status);      // expect-error: does not hold
  tBoundedRangeReportable<u64> const upper(u64{1}, -5, status);     // expect-error: does not hold
  tBoundedRangeReportable<u32> const wide(0, 1LL << 32, status);    // expect-error: does not hold
  tBoundedRangeReportable<i32> const large(0, 0x80000000, status);  // expect-error: does not hold
  tBoundedRangeReportable<u32> const unknown(lowest, 99, status);
  return negative.isEquivalent(upper, status) + wide.isEquivalent(large, status) +
         unknown.isEquivalent(wide, status);
}
