// What a calibration makes of its readings, some of them lengthened by interrupts.

#include "trace/tTickAverage.h"

#include <gtest/gtest.h>

namespace {

using nOXDIAG100::tTickAverage;

constexpr u64 kInterrupt = 60'000;

template <class Ticks>
u64 averageOf(Ticks ticksOf) {
  tTickAverage average;
  for (u64 sample = 0; sample < tTickAverage::kSampleCount; ++sample) {
    for (u64 count = 0; count < 4; ++count) average.addTry(ticksOf(sample, count));
    average.endSample();
  }
  return average.get();
}

}  // namespace

TEST(TickAverage, ItIsTheSumOfTwentyFiveSamplesDividedByTwentyFive) {
  EXPECT_EQ(averageOf([](u64 sample, u64) { return sample; }), 12u);
  EXPECT_EQ(averageOf([](u64 sample, u64) { return sample < 24 ? u64{10} : u64{34}; }), 10u);
  EXPECT_EQ(averageOf([](u64 sample, u64) { return sample < 24 ? u64{10} : u64{35}; }), 11u);
}

TEST(TickAverage, OfTheTriesForASampleTheShortestCounts) {
  EXPECT_EQ(averageOf([](u64, u64 count) { return 40 - count; }), 37u);
  EXPECT_EQ(averageOf([](u64, u64 count) { return 40 + count; }), 40u);
}

TEST(TickAverage, AnInterruptInATryChangesNothing) {
  for (u64 place = 0; place < 4; ++place) {
    EXPECT_EQ(averageOf([&](u64, u64 count) { return count == place ? kInterrupt : 30; }), 30u);
  }
}

TEST(TickAverage, CodeThatIsNotInTheCacheChangesNothing) {
  EXPECT_EQ(
      averageOf([](u64 sample, u64 count) { return sample + count == 0 ? u64{9'000} : u64{30}; }),
      30u);
}
