#include "oxdiagk/tKernelTimeText.h"

#include "oxdiagk/tTrace.h"
#include "trace/fixedDigits.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kUnitsPerSecond = 10'000'000;
constexpr u64 kSecondsPerMinute = 60;
constexpr u64 kSecondsPerHour = 60 * kSecondsPerMinute;
constexpr u64 kSecondsPerDay = 24 * kSecondsPerHour;

// Four centuries begin in 1601; the last of four years, and of the centuries, is the longest.
constexpr u64 kFirstYear = 1601;
constexpr u64 kDaysOfYear = 365;
constexpr u64 kDaysOfFourYears = 4 * kDaysOfYear + 1;
constexpr u64 kDaysOfCentury = 25 * kDaysOfFourYears - 1;
constexpr u64 kDaysOfFourCenturies = 4 * kDaysOfCentury + 1;

constexpr u32 kDaysOfMonths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr u32 kFebruary = 1;

u64 smaller(u64 left, u64 right) {
  return left < right ? left : right;
}

struct tDay {
  u64 year;
  u32 month;  // from 0 on
  u64 day;    // of the month, from 0 on
};

tDay findDay(u64 days) {
  u64 const fourCenturies = days / kDaysOfFourCenturies;
  days %= kDaysOfFourCenturies;
  u64 const centuries = smaller(days / kDaysOfCentury, 3);
  days -= centuries * kDaysOfCentury;
  u64 const fourYears = days / kDaysOfFourYears;
  days %= kDaysOfFourYears;
  u64 const years = smaller(days / kDaysOfYear, 3);
  days -= years * kDaysOfYear;
  u64 const year = kFirstYear + 400 * fourCenturies + 100 * centuries + 4 * fourYears + years;
  bool const isLeap = years == 3 && (fourYears != 24 || centuries == 3);
  u32 month = 0;
  for (;; ++month) {
    u64 const length = kDaysOfMonths[month] + (isLeap && month == kFebruary ? 1 : 0);
    if (days < length) return {year, month, days};
    days -= length;
  }
}

// Digits, and the character behind them.
void putPart(tTrace& trace, u64 value, u32 width, char last) {
  char text[8];
  *writeFixedDigits(value, 10, width, text) = last;
  trace.put(text, width + 1);
}

void putInterval(tTrace& trace, u64 units) {
  trace.put("-").put(units / kUnitsPerSecond, 10).put(".");
  putPart(trace, units % kUnitsPerSecond, 7, ' ');
  trace.put("s");
}

}  // namespace

tKernelTimeText::tKernelTimeText(i64 hundredNanoseconds) : time(hundredNanoseconds) {
}

void tKernelTimeText::put(tTrace& trace) const {
  if (!trace.isLineShown()) return;
  u64 const units = static_cast<u64>(time);
  if (time < 0) return putInterval(trace, ~units + 1);
  u64 const seconds = units / kUnitsPerSecond;
  tDay const day = findDay(seconds / kSecondsPerDay);
  u64 const ofDay = seconds % kSecondsPerDay;
  trace.put(day.year, 10).put("-");
  putPart(trace, day.month + 1, 2, '-');
  putPart(trace, day.day + 1, 2, 'T');
  putPart(trace, ofDay / kSecondsPerHour, 2, ':');
  putPart(trace, ofDay % kSecondsPerHour / kSecondsPerMinute, 2, ':');
  putPart(trace, ofDay % kSecondsPerMinute, 2, '.');
  putPart(trace, units % kUnitsPerSecond, 7, 'Z');
}

}  // namespace nOXDIAG100
