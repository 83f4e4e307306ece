#include "oxdiagview/tickRate.h"

#include <charconv>
#include <chrono>

namespace oxdiagview {
namespace {

constexpr double kMostTicks = 1e10;  // a second; no processor is that fast
constexpr std::chrono::milliseconds kMeasured(5);

struct tUnit {
  std::string_view name;
  double ticks;
};
constexpr tUnit kUnits[] = {{"", 1}, {"Hz", 1}, {"kHz", 1e3}, {"MHz", 1e6}, {"GHz", 1e9}};

}  // namespace

std::optional<uint64_t> readTickRate(std::string_view text) {
  double number = 0;
  char const* const end = text.data() + text.size();
  auto const read = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (read.ec != std::errc()) return std::nullopt;
  std::string_view const name(read.ptr, static_cast<size_t>(end - read.ptr));
  for (tUnit const& unit : kUnits) {
    double const ticks = number * unit.ticks;
    if (name == unit.name && ticks >= 1 && ticks <= kMostTicks) return static_cast<uint64_t>(ticks);
  }
  return std::nullopt;
}

uint64_t measureTickRate() {
  using tClock = std::chrono::steady_clock;
  auto const begin = tClock::now();
  uint64_t const firstTicks = __builtin_ia32_rdtsc();
  while (tClock::now() - begin < kMeasured) {
  }
  auto const end = tClock::now();
  uint64_t const ticks = __builtin_ia32_rdtsc() - firstTicks;
  return static_cast<uint64_t>(static_cast<double>(ticks) /
                               std::chrono::duration<double>(end - begin).count());
}

}  // namespace oxdiagview
