#pragma once

#include "ntos/types.h"
#include "vexk/tSSTimeAbsolute.h"

namespace nTRANSLATORS100 {

// A point in time as a calendar and a clock show it: Gregorian, UTC, whole seconds. Any IRQL.
struct tCalendarTime {
  explicit tCalendarTime(tSSTimeAbsolute const& time);

  u64 year;    // 1601 or later
  u32 month;   // 1..12
  u32 day;     // 1..31
  u32 hour;    // 0..23
  u32 minute;  // 0..59
  u32 second;  // 0..59
};

}  // namespace nTRANSLATORS100
