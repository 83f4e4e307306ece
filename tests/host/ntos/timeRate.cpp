// Time that passes faster than it does, and a counter that does not show it.

#include <gtest/gtest.h>

#include <chrono>

#include "ntos/event.h"
#include "ntos/status.h"
#include "ntos/time.h"
#include "ntos/wait.h"
#include "ntoshost/time.h"

namespace {

constexpr i64 kTicksPerSecond = 10'000'000;

i64 getCount() {
  return KeQueryPerformanceCounter(nullptr).QuadPart;
}

NTSTATUS waitInVain(i64 seconds) {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  LARGE_INTEGER span;
  span.QuadPart = -seconds * kTicksPerSecond;
  return KeWaitForSingleObject(&never, Executive, KernelMode, 0, &span);
}

class TimeRate : public testing::Test {
 protected:
  ~TimeRate() override { ntoshost::setTimeRate(1); }
};

}  // namespace

TEST_F(TimeRate, WaitForASpanEndsEarlierAndTheCounterShowsTheSpan) {
  ntoshost::setTimeRate(1000);
  auto const start = std::chrono::steady_clock::now();
  i64 const count = getCount();
  EXPECT_EQ(waitInVain(100), STATUS_TIMEOUT);
  EXPECT_GE(getCount() - count, 100 * kTicksPerSecond);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(50));
}

TEST_F(TimeRate, CounterThatStandsStillShowsNoWait) {
  ntoshost::setTimeRate(1000);
  ntoshost::setCounterRate(0);
  i64 const count = getCount();
  EXPECT_EQ(waitInVain(10), STATUS_TIMEOUT);
  EXPECT_EQ(getCount(), count);
  ntoshost::setTimeRate(1);
  EXPECT_GE(getCount(), count);
}

TEST_F(TimeRate, CounterThatRunsBackwardsShowsLessBehindAWait) {
  ntoshost::setTimeRate(1000);
  ntoshost::setCounterRate(-1000);
  i64 const count = getCount();
  EXPECT_EQ(waitInVain(10), STATUS_TIMEOUT);
  EXPECT_LE(getCount(), count - 10 * kTicksPerSecond);
}

TEST_F(TimeRate, CounterNeverGoesBackWhenTheRateChanges) {
  i64 last = getCount();
  for (u32 const rate : {1000u, 1u, 50u, 1u}) {
    ntoshost::setTimeRate(rate);
    i64 const now = getCount();
    EXPECT_GE(now, last);
    last = now;
  }
}
