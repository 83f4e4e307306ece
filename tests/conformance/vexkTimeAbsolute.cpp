#include "conformance/harness.h"
#include "ntos/time.h"
#include "vexk/tSSTimeAbsolute.h"

namespace {

constexpr u64 kUnitsPerSecond = 10000000;                         // of 100 ns
constexpr u64 kUnitsIn2020 = u64{13222310400} * kUnitsPerSecond;  // 1 January
constexpr u64 kUnitsIn2200 = u64{18902592000} * kUnitsPerSecond;

u64 kernelTime() {
  LARGE_INTEGER time;
  KeQuerySystemTime(&time);
  return static_cast<u64>(time.QuadPart);
}

// Back to units of 100 ns, rounded to the nearest.
u64 unitsOf(tSSTimeAbsolute const& time) {
  u64 const high = time.getFraction() >> 32;
  return time.getSeconds() * kUnitsPerSecond +
         (high * kUnitsPerSecond + (u64{1} << 31)) / (u64{1} << 32);
}

}  // namespace

TEST(TimeAbsolute, TheBeginningIsAllZero) {
  EXPECT_TRUE(tSSTimeAbsolute::ofKernelTime(0) == tSSTimeAbsolute{});
}

TEST(TimeAbsolute, WholeSecondsHaveNoFraction) {
  tSSTimeAbsolute const time = tSSTimeAbsolute::ofKernelTime(kUnitsIn2020);
  EXPECT_EQ(u64{13222310400}, time.getSeconds());
  EXPECT_EQ(u64{0}, time.getFraction());
}

TEST(TimeAbsolute, HalfASecondIsTheHighestBitOfTheFraction) {
  tSSTimeAbsolute const time = tSSTimeAbsolute::ofKernelTime(3 * kUnitsPerSecond / 2);
  EXPECT_EQ(u64{1}, time.getSeconds());
  EXPECT_EQ(u64{1} << 63, time.getFraction());
}

// 2^64 / 10^7, rounded down.
TEST(TimeAbsolute, OneUnitIsItsShareOfTheFraction) {
  EXPECT_EQ(u64{1844674407370}, tSSTimeAbsolute::ofKernelTime(1).getFraction());
}

TEST(TimeAbsolute, TheLastUnitOfASecondIsOneShareBelowIt) {
  tSSTimeAbsolute const time = tSSTimeAbsolute::ofKernelTime(kUnitsPerSecond - 1);
  EXPECT_EQ(u64{0}, time.getSeconds());
  EXPECT_EQ(u64{0} - u64{1844674407371}, time.getFraction());
}

TEST(TimeAbsolute, TheGreatestKernelTimeFits) {
  tSSTimeAbsolute const time = tSSTimeAbsolute::ofKernelTime(~u64{0});
  EXPECT_EQ(u64{1844674407370}, time.getSeconds());
  EXPECT_EQ(~u64{0}, unitsOf(time));
}

TEST(TimeAbsolute, EveryUnitIsFoundAgain) {
  for (u64 units = 0; units < kUnitsPerSecond; units += 9973) {
    EXPECT_EQ(kUnitsIn2020 + units, unitsOf(tSSTimeAbsolute::ofKernelTime(kUnitsIn2020 + units)));
  }
}

TEST(TimeAbsolute, NowLiesBetweenTwoLooksAtTheKernelsTime) {
  u64 const before = kernelTime();
  u64 const now = unitsOf(tSSTimeAbsolute::now());
  u64 const after = kernelTime();
  EXPECT_LE(before, now);
  EXPECT_LE(now, after);
}

TEST(TimeAbsolute, TheKernelsTimeIsOfThisCentury) {
  u64 const time = kernelTime();
  EXPECT_LT(kUnitsIn2020, time);
  EXPECT_LT(time, kUnitsIn2200);
}
