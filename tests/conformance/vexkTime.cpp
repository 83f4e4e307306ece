#include "conformance/harness.h"
#include "vexk/cpu.h"
#include "vexk/threadUtility.h"
#include "vexk/timerTimebase.h"

namespace {

tTimeRatio ratio(u32 from, u32 to) {
  return tTimerUtility::conversionTable[from][to];
}

bool isRatio(u32 from, u32 to, u64 numerator, u64 denominator) {
  return ratio(from, to).numerator == numerator && ratio(from, to).denominator == denominator;
}

bool isResolution(u64 countsPerSecond, u64 value, u32 unit) {
  tTimebaseResolution const resolution = tTimebaseResolution::ofFrequency(countsPerSecond);
  return resolution.value == value && resolution.unit == unit;
}

}  // namespace

TEST(VexkTime, EachUnitConvertsToItselfUnchanged) {
  for (u32 unit = 0; unit < kTimeUnitCount; ++unit) EXPECT_TRUE(isRatio(unit, unit, 1, 1));
}

TEST(VexkTime, NeighbouringUnitsHaveTheirRatios) {
  EXPECT_TRUE(isRatio(kTimeNanosecond, kTimePicosecond, 1000, 1));
  EXPECT_TRUE(isRatio(kTimeMicrosecond, kTimeNanosecond, 1000, 1));
  EXPECT_TRUE(isRatio(kTimeMillisecond, kTimeMicrosecond, 1000, 1));
  EXPECT_TRUE(isRatio(kTimeSecond, kTimeMillisecond, 1000, 1));
  EXPECT_TRUE(isRatio(kTimeMinute, kTimeSecond, 60, 1));
  EXPECT_TRUE(isRatio(kTimeHour, kTimeMinute, 60, 1));
}

TEST(VexkTime, UnitThreeIsTheMillisecond) {
  EXPECT_TRUE(isRatio(3, kTimeSecond, 1, 1000));
  EXPECT_TRUE(isRatio(kTimeHour, 3, 3600000, 1));
}

TEST(VexkTime, TheExtremesFitTheTable) {
  EXPECT_TRUE(isRatio(kTimeHour, kTimePicosecond, 3600000000000000, 1));
  EXPECT_TRUE(isRatio(kTimePicosecond, kTimeHour, 1, 3600000000000000));
}

TEST(VexkTime, TheWayBackIsTheInverse) {
  for (u32 from = 0; from < kTimeUnitCount; ++from) {
    for (u32 to = 0; to < kTimeUnitCount; ++to) {
      EXPECT_TRUE(isRatio(to, from, ratio(from, to).denominator, ratio(from, to).numerator));
    }
  }
}

TEST(VexkTime, AConversionInTwoStepsIsTheConversion) {
  for (u32 coarse = 2; coarse < kTimeUnitCount; ++coarse) {
    for (u32 middle = 1; middle < coarse; ++middle) {
      for (u32 fine = 0; fine < middle; ++fine) {
        EXPECT_EQ(ratio(coarse, fine).numerator,
                  ratio(coarse, middle).numerator * ratio(middle, fine).numerator);
      }
    }
  }
}

TEST(VexkTime, TheCounterAdvancesAndNeverGoesBack) {
  u64 const start = tTimerTimebaseEfficient::getCounterValue();
  u64 last = start;
  bool wentBack = false;
  for (u32 i = 0; i < 100000000 && last == start; ++i) {
    u64 const now = tTimerTimebaseEfficient::getCounterValue();
    wentBack = wentBack || now < last;
    last = now;
  }
  EXPECT_FALSE(wentBack);
  EXPECT_LT(start, last);
}

TEST(VexkTime, OneCountIsWorthLessThanASecond) {
  u64 const value = tTimerTimebaseEfficient::getResolutionValue();
  u32 const unit = tTimerTimebaseEfficient::getResolutionTimeUnit();
  ASSERT_LT(unit, u32{kTimeSecond});
  EXPECT_LE(u64{1}, value);
  EXPECT_LT(value, ratio(kTimeSecond, unit).numerator);
}

TEST(VexkTime, AResolutionUsesTheCoarsestExactUnit) {
  EXPECT_TRUE(isResolution(10000000, 100, kTimeNanosecond));
  EXPECT_TRUE(isResolution(1000000000, 1, kTimeNanosecond));
  EXPECT_TRUE(isResolution(1000000, 1, kTimeMicrosecond));
  EXPECT_TRUE(isResolution(100, 10, kTimeMillisecond));
  EXPECT_TRUE(isResolution(1, 1, kTimeSecond));
  EXPECT_TRUE(isResolution(2500000000, 400, kTimePicosecond));
}

TEST(VexkTime, AnUnevenResolutionIsRoundedPicoseconds) {
  EXPECT_TRUE(isResolution(3579545, 279365, kTimePicosecond));
  EXPECT_TRUE(isResolution(3, 333333333333, kTimePicosecond));
}

TEST(VexkTime, AResolutionIsNeverZero) {
  EXPECT_TRUE(isResolution(UINT64_MAX, 1, kTimePicosecond));
  EXPECT_TRUE(isResolution(0, 1, kTimeSecond));
}

TEST(VexkCpu, TheTimeStampCounterAdvances) {
  u64 const start = vexReadTimeStampCounter();
  u64 last = start;
  for (u32 i = 0; i < 1000000 && last == start; ++i) last = vexReadTimeStampCounter();
  EXPECT_LT(start, last);
}

TEST(VexkThread, AThreadHasOneIdThatIsNotZero) {
  u32 const id = tThreadUtility::getCurrentThreadId();
  EXPECT_NE(u32{0}, id);
  EXPECT_EQ(id, tThreadUtility::getCurrentThreadId());
}
