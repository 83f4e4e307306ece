// The performance counter.

#include <gtest/gtest.h>

#include <thread>

#include "ntos/time.h"

namespace {

TEST(PerformanceCounter, ItTicksTenMillionTimesASecond) {
  LARGE_INTEGER frequency = {};
  KeQueryPerformanceCounter(&frequency);
  EXPECT_EQ(frequency.QuadPart, 10'000'000);
}

TEST(PerformanceCounter, ItMeasuresASleep) {
  i64 const start = KeQueryPerformanceCounter(nullptr).QuadPart;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // is what it measures
  EXPECT_GE(KeQueryPerformanceCounter(nullptr).QuadPart - start, 200'000);
}

TEST(PerformanceCounter, ItNeverGoesBack) {
  i64 last = 0;
  for (int i = 0; i < 10'000; ++i) {
    i64 const now = KeQueryPerformanceCounter(nullptr).QuadPart;
    ASSERT_GE(now, last);
    last = now;
  }
}

}  // namespace
