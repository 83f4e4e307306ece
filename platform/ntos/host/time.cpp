#include "ntos/time.h"

#include <time.h>

#include "ntoshost/time.h"

namespace {
constexpr i64 kTicksPerSecond = 10'000'000;
constexpr i64 kNanosecondsPerTick = 100;
constexpr i64 kSecondsFrom1601To1970 = 11'644'473'600;

constinit u32 g_rate = 1;
constinit i32 g_counterRate = 1;
constinit i64 g_ticksAhead = 0;  // what the counter shows, less g_counterRate times the time

i64 ticksOf(timespec const& time) {
  return time.tv_sec * kTicksPerSecond + time.tv_nsec / kNanosecondsPerTick;
}

i64 ticksSinceStart() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return ticksOf(now);
}

i32 getCounterRate() {
  return __atomic_load_n(&g_counterRate, __ATOMIC_RELAXED);
}

}  // namespace

namespace ntoshost {

void setTimeRate(u32 rate) {
  setCounterRate(static_cast<i32>(rate));
  __atomic_store_n(&g_rate, rate, __ATOMIC_RELAXED);
}

void setCounterRate(i32 rate) {
  i64 const shift = (i64{getCounterRate()} - i64{rate}) * ticksSinceStart();
  __atomic_fetch_add(&g_ticksAhead, shift, __ATOMIC_RELAXED);
  __atomic_store_n(&g_counterRate, rate, __ATOMIC_RELAXED);
}

u32 getTimeRate() {
  return __atomic_load_n(&g_rate, __ATOMIC_RELAXED);
}

void moveTime(i64 counts) {
  __atomic_fetch_add(&g_ticksAhead, counts, __ATOMIC_RELAXED);
}

}  // namespace ntoshost

LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency) {
  if (frequency != nullptr) frequency->QuadPart = kTicksPerSecond;
  LARGE_INTEGER ticks;
  ticks.QuadPart =
      ticksSinceStart() * getCounterRate() + __atomic_load_n(&g_ticksAhead, __ATOMIC_RELAXED);
  return ticks;
}

void KeQuerySystemTime(LARGE_INTEGER* time) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  now.tv_sec += kSecondsFrom1601To1970;
  time->QuadPart = ticksOf(now);
}
