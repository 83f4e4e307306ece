#include "oxdiagview/timeText.h"

namespace oxdiagview {
namespace {

constexpr uint64_t kPerMicrosecond = 1'000;
constexpr uint64_t kPerMillisecond = 1'000'000;
constexpr uint64_t kPerSecond = 1'000'000'000;
constexpr uint64_t kPerMinute = 60 * kPerSecond;
constexpr uint64_t kPerHour = 60 * kPerMinute;
constexpr uint64_t kPerDay = 24 * kPerHour;

std::string digitsOf(uint64_t number, size_t least) {
  std::string digits = std::to_string(number);
  return digits.size() < least ? std::string(least - digits.size(), '0') + digits : digits;
}

// Three digits that count. `thousandth` is that part of the unit in nanoseconds.
std::string scaled(uint64_t nanoseconds, uint64_t thousandth, char const* name) {
  uint64_t const number = nanoseconds / thousandth;  // in thousandths
  size_t const decimals = number < 9'995 ? 2 : number < 99'950 ? 1 : 0;
  uint64_t const step = decimals == 2 ? 10 : decimals == 1 ? 100 : 1000;
  uint64_t const rounded = (number + step / 2) / step;
  std::string text = digitsOf(rounded, decimals + 1);
  if (decimals != 0) text.insert(text.size() - decimals, 1, '.');
  return (text += ' ') += name;
}

std::string pairOf(uint64_t large, char const* largeName, uint64_t small, char const* smallName) {
  return std::to_string(large) + " " + largeName + " " + digitsOf(small, 2) + " " + smallName;
}

// What would round to a thousand is said in the next unit.
std::string magnitudeText(uint64_t span) {
  if (span < kPerMicrosecond) return std::to_string(span) + " ns";
  if (span < kPerMillisecond - kPerMillisecond / 2000) return scaled(span, 1, "µs");
  if (span < kPerSecond - kPerSecond / 2000) return scaled(span, kPerMicrosecond, "ms");
  if (span < kPerMinute) return scaled(span, kPerMillisecond, "s");
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
  std::string text = nanoseconds < 0 ? "-" : "";
  text += std::to_string(magnitude / kPerSecond);
  text += '.';
  return text += digitsOf(magnitude % kPerSecond / kPerMicrosecond, 6);
}

}  // namespace oxdiagview
