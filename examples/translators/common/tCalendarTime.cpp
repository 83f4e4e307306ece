#include "translators/common/tCalendarTime.h"

namespace nTRANSLATORS100 {
namespace {

constexpr u64 kSecondsOfDay = u64{24} * 60 * 60;
constexpr u64 kDaysOfYear = 365;
constexpr u64 kDaysOfFourYears = 4 * kDaysOfYear + 1;
constexpr u64 kDaysOfCentury = 25 * kDaysOfFourYears - 1;
constexpr u64 kDaysOfFourCenturies = 4 * kDaysOfCentury + 1;
constexpr u64 kFirstYear = 1601;  // begins four centuries, at whose end the longest one stands
constexpr u32 kDaysOfMonths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr u32 kFebruary = 2;

// How many whole spans of `length` days have passed, at most `most`; takes them off `days`. The
// last span of a group may be a day longer than the others.
u64 takeSpans(u64& days, u64 length, u64 most) {
  u64 const passed = days / length < most ? days / length : most;
  days -= passed * length;
  return passed;
}

bool isLeapYear(u64 year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

u32 lengthOf(u32 month, u64 year) {
  return kDaysOfMonths[month - 1] + (month == kFebruary && isLeapYear(year) ? 1 : 0);
}

}  // namespace

tCalendarTime::tCalendarTime(tSSTimeAbsolute const& time) : month(1) {
  u64 days = time.getSeconds() / kSecondsOfDay;
  u32 const rest = static_cast<u32>(time.getSeconds() % kSecondsOfDay);
  hour = rest / (60 * 60);
  minute = rest / 60 % 60;
  second = rest % 60;
  year = kFirstYear + 400 * takeSpans(days, kDaysOfFourCenturies, days);
  year += 100 * takeSpans(days, kDaysOfCentury, 3);
  year += 4 * takeSpans(days, kDaysOfFourYears, 24);
  year += takeSpans(days, kDaysOfYear, 3);
  for (; days >= lengthOf(month, year); ++month) days -= lengthOf(month, year);
  day = static_cast<u32>(days) + 1;
}

}  // namespace nTRANSLATORS100
