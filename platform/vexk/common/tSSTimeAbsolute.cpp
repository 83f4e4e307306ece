#include "vexk/tSSTimeAbsolute.h"

#include "ntos/time.h"

namespace {

constexpr u64 kKernelTimePerSecond = 10'000'000;  // units of 100 ns

}  // namespace

tSSTimeAbsolute tSSTimeAbsolute::now() {
  LARGE_INTEGER time;
  KeQuerySystemTime(&time);
  return ofKernelTime(static_cast<u64>(time.QuadPart));
}

// The fraction is divided 32 bits at a time, like on paper: a remainder has 24 bits, so nothing
// grows beyond 56.
tSSTimeAbsolute tSSTimeAbsolute::ofKernelTime(u64 hundredNanoseconds) {
  u64 const seconds = hundredNanoseconds / kKernelTimePerSecond;
  u64 const high = (hundredNanoseconds % kKernelTimePerSecond) << 32;
  u64 const low = (high % kKernelTimePerSecond) << 32;
  return {{static_cast<u32>(low / kKernelTimePerSecond),
           static_cast<u32>(high / kKernelTimePerSecond), static_cast<u32>(seconds),
           static_cast<u32>(seconds >> 32)}};
}
