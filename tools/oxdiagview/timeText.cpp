#include "oxdiagview/timeText.h"

#include <cinttypes>
#include <cstdio>

namespace oxdiagview {
namespace {

constexpr uint64_t kPerMicrosecond = 1'000;
constexpr uint64_t kPerMillisecond = 1'000'000;
constexpr uint64_t kPerSecond = 1'000'000'000;
constexpr uint64_t kPerMinute = 60 * kPerSecond;
constexpr uint64_t kPerHour = 60 * kPerMinute;
constexpr uint64_t kPerDay = 24 * kPerHour;

// Three digits that count.
std::string scaled(uint64_t nanoseconds, uint64_t unit, char const* name) {
  double const number = static_cast<double>(nanoseconds) / static_cast<double>(unit);
  char text[40];
  int const decimals = number < 9.995 ? 2 : number < 99.95 ? 1 : 0;
  std::snprintf(text, sizeof(text), "%.*f %s", decimals, number, name);
  return text;
}

std::string pairOf(uint64_t large, char const* largeName, uint64_t small, char const* smallName) {
  char text[64];
  std::snprintf(text, sizeof(text), "%" PRIu64 " %s %02" PRIu64 " %s", large, largeName, small,
                smallName);
  return text;
}

// What would round to a thousand is said in the next unit.
std::string magnitudeText(uint64_t span) {
  if (span < kPerMicrosecond) return std::to_string(span) + " ns";
  if (span < kPerMillisecond - kPerMillisecond / 2000) return scaled(span, kPerMicrosecond, "µs");
  if (span < kPerSecond - kPerSecond / 2000) return scaled(span, kPerMillisecond, "ms");
  if (span < kPerMinute) return scaled(span, kPerSecond, "s");
  if (span < kPerHour) {
    return pairOf(span / kPerMinute, "min", span % kPerMinute / kPerSecond, "s");
  }
  if (span < kPerDay) return pairOf(span / kPerHour, "h", span % kPerHour / kPerMinute, "min");
  return pairOf(span / kPerDay, "d", span % kPerDay / kPerHour, "h");
}

}  // namespace

std::string spanText(int64_t nanoseconds) {
  if (nanoseconds >= 0) return magnitudeText(static_cast<uint64_t>(nanoseconds));
  return "-" + magnitudeText(0 - static_cast<uint64_t>(nanoseconds));
}

std::string clockText(int64_t nanoseconds) {
  uint64_t const bits = static_cast<uint64_t>(nanoseconds);
  uint64_t const magnitude = nanoseconds < 0 ? 0 - bits : bits;
  char text[40];
  std::snprintf(text, sizeof(text), "%s%" PRIu64 ".%06" PRIu64, nanoseconds < 0 ? "-" : "",
                magnitude / kPerSecond, magnitude % kPerSecond / kPerMicrosecond);
  return text;
}

}  // namespace oxdiagview
