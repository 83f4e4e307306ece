#include "ntos/time.h"

// The performance counter is the machine's high precision event timer, at the address where a PC
// has it: it counts in 64 bits, says its own rate, and so needs no calibration against a second
// clock, which another load on an emulator's host would falsify.

namespace {

constexpr size_t kTimer = 0xFED00000;
constexpr size_t kPeriod = 0x004;  // femtoseconds a count
constexpr size_t kConfiguration = 0x010;
constexpr u32 kEnabled = 1;
constexpr size_t kCounterLow = 0x0F0;
constexpr size_t kCounterHigh = 0x0F4;
constexpr u64 kFemtosecondsPerSecond = 1'000'000'000'000'000;

u32 volatile& timerRegister(size_t offset) {
  return *reinterpret_cast<u32 volatile*>(kTimer + offset);
}

// The two halves are read one after the other; a carry between the two is seen by the second look
// at the high one.
u64 readCounter() {
  for (;;) {
    u32 const high = timerRegister(kCounterHigh);
    u32 const low = timerRegister(kCounterLow);
    if (timerRegister(kCounterHigh) == high) return static_cast<u64>(high) << 32 | low;
  }
}

void start() {
  u32 const configuration = timerRegister(kConfiguration);
  if ((configuration & kEnabled) == 0) timerRegister(kConfiguration) = configuration | kEnabled;
}

}  // namespace

LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency) {
  start();
  if (frequency != nullptr) {
    frequency->QuadPart = static_cast<i64>(kFemtosecondsPerSecond / timerRegister(kPeriod));
  }
  LARGE_INTEGER ticks;
  ticks.QuadPart = static_cast<i64>(readCounter());
  return ticks;
}
