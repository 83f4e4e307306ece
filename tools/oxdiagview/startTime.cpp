#include "oxdiagview/startTime.h"

#include <charconv>
#include <chrono>

namespace oxdiagview {
namespace {

constexpr std::string_view kForm = "0000-00-00T00:00:00";
constexpr size_t kMostDecimals = 9;
constexpr int kFirstYear = 1970;
constexpr int kLastYear = 2499;
constexpr uint64_t kNanosecondsPerSecond = 1'000'000'000;

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// The separators where they belong, and digits elsewhere.
bool hasForm(std::string_view text) {
  if (text.size() < kForm.size()) return false;
  for (size_t place = 0; place < kForm.size(); ++place) {
    bool const isGood = kForm[place] == '0' ? isDigit(text[place]) : text[place] == kForm[place];
    if (!isGood) return false;
  }
  return true;
}

int numberAt(std::string_view text, size_t place, size_t digits) {
  int number = 0;
  std::from_chars(text.data() + place, text.data() + place + digits, number);
  return number;
}

// Such as ".25", or nothing at all.
std::optional<uint64_t> nanosecondsOf(std::string_view decimals) {
  if (decimals.empty()) return 0;
  if (decimals[0] != '.' || decimals.size() < 2 || decimals.size() > kMostDecimals + 1) {
    return std::nullopt;
  }
  uint64_t nanoseconds = 0;
  for (size_t place = 1; place <= kMostDecimals; ++place) {
    char const digit = place < decimals.size() ? decimals[place] : '0';
    if (!isDigit(digit)) return std::nullopt;
    nanoseconds = nanoseconds * 10 + static_cast<uint64_t>(digit - '0');
  }
  return nanoseconds;
}

}  // namespace

std::optional<uint64_t> readStartTime(std::string_view text) {
  using namespace std::chrono;
  if (!hasForm(text) || text.back() != 'Z') return std::nullopt;
  auto const part = nanosecondsOf(text.substr(kForm.size(), text.size() - kForm.size() - 1));
  int const yearNumber = numberAt(text, 0, 4);
  year_month_day const date(year(yearNumber), month(static_cast<unsigned>(numberAt(text, 5, 2))),
                            day(static_cast<unsigned>(numberAt(text, 8, 2))));
  int const hour = numberAt(text, 11, 2);
  int const minute = numberAt(text, 14, 2);
  int const second = numberAt(text, 17, 2);
  bool const isTime = hour < 24 && minute < 60 && second < 60;
  if (!part || !date.ok() || !isTime || yearNumber < kFirstYear || yearNumber > kLastYear) {
    return std::nullopt;
  }
  seconds const since =
      sys_days(date).time_since_epoch() + hours(hour) + minutes(minute) + seconds(second);
  return static_cast<uint64_t>(since.count()) * kNanosecondsPerSecond + *part;
}

}  // namespace oxdiagview
