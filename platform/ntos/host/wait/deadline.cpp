#include "wait/deadline.h"

#include "ntoshost/time.h"

namespace ntoshost {
namespace {

constexpr u64 kTicksPerSecond = 10'000'000;
constexpr u64 kNanosecondsPerTick = 100;
constexpr u64 kTicksFrom1601To1970 = 116'444'736'000'000'000;

u64 ticksNow(clockid_t clock) {
  timespec now;
  clock_gettime(clock, &now);
  return static_cast<u64>(now.tv_sec) * kTicksPerSecond +
         static_cast<u64>(now.tv_nsec) / kNanosecondsPerTick;
}

}  // namespace

Deadline::Deadline(LARGE_INTEGER const* timeout) : m_kind(Kind::never) {
  if (timeout == nullptr) return;
  m_kind = Kind::now;
  u64 const ticks = static_cast<u64>(timeout->QuadPart);
  if (timeout->QuadPart < 0) {
    set(CLOCK_MONOTONIC, ticksNow(CLOCK_MONOTONIC) + (0 - ticks) / getTimeRate());
  } else if (ticks > kTicksFrom1601To1970) {
    set(CLOCK_REALTIME, ticks - kTicksFrom1601To1970);
  }
}

void Deadline::set(clockid_t clock, u64 ticks) {
  m_kind = Kind::later;
  m_clock = clock;
  m_time.tv_sec = static_cast<time_t>(ticks / kTicksPerSecond);
  m_time.tv_nsec = static_cast<long>(ticks % kTicksPerSecond * kNanosecondsPerTick);
}

}  // namespace ntoshost
