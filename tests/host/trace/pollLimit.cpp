// How long a polling loop may go on, on timebases of every kind, with counts as a test gives them.

#include "trace/tPollLimit.h"

#include <gtest/gtest.h>

namespace {

using nOXDIAG100::tPollLimit;

constexpr u64 kLargest = ~u64{0};

// The least number of counts, from 0 in one go, at which the limit is reached.
u64 countsOf(u64 value, u32 unit) {
  u64 low = 1;
  u64 high = kLargest;
  while (low < high) {
    u64 const middle = low + (high - low) / 2;
    if (tPollLimit({value, unit}, 0).isReached(middle)) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

}  // namespace

TEST(PollLimit, IsAMillisecondAndOneStepOfAFineTimebase) {
  EXPECT_EQ(countsOf(1, kTimePicosecond), 1'000'000'001u);
  EXPECT_EQ(countsOf(1, kTimeNanosecond), 1'000'001u);
  EXPECT_EQ(countsOf(1, kTimeMicrosecond), 1001u);
  EXPECT_EQ(countsOf(100, kTimeNanosecond), 10'001u);
}

TEST(PollLimit, StepThatDoesNotDivideTheMillisecondIsRoundedUp) {
  EXPECT_EQ(countsOf(279, kTimeNanosecond), 3586u);  // 1000279 ns are 3585.2 steps
  EXPECT_EQ(countsOf(999, kTimeMicrosecond), 3u);    // 1999 us are 2.001
}

TEST(PollLimit, TimebaseOfMillisecondsAddsOneStep) {
  EXPECT_EQ(countsOf(1, kTimeMillisecond), 2u);
  EXPECT_EQ(countsOf(10, kTimeMillisecond), 2u);  // 11 ms
}

TEST(PollLimit, StepLongerThanAMillisecondIsAddedAsAWhole) {
  EXPECT_EQ(countsOf(16'000, kTimeMicrosecond), 2u);    // 17000 us
  EXPECT_EQ(countsOf(2'000'000, kTimeNanosecond), 2u);  // 3 ms
}

TEST(PollLimit, TimebaseTooCoarseForTheMillisecondAddsASecondStep) {
  EXPECT_EQ(countsOf(1, kTimeSecond), 2u);
  EXPECT_EQ(countsOf(7, kTimeSecond), 2u);
  EXPECT_EQ(countsOf(1, kTimeMinute), 2u);
  EXPECT_EQ(countsOf(1, kTimeHour), 2u);
}

TEST(PollLimit, IsNeverLessThanTheMillisecondWhenTheSumOverflows) {
  EXPECT_EQ(countsOf(kLargest, kTimeNanosecond), 1u);
  EXPECT_EQ(countsOf(kLargest - 1'000'000, kTimeNanosecond), 2u);  // the sum is the largest number
}

TEST(PollLimit, IsNotReachedWithoutElapsedTime) {
  tPollLimit limit({1, kTimeMicrosecond}, 500);
  for (int poll = 0; poll < 10'000; ++poll) EXPECT_FALSE(limit.isReached(500));
}

TEST(PollLimit, AddsUpTheTimeOfManyPolls) {
  tPollLimit limit({1, kTimeMicrosecond}, 0);
  for (u64 count = 1; count <= 1000; ++count) EXPECT_FALSE(limit.isReached(count));
  EXPECT_TRUE(limit.isReached(1001));
}

TEST(PollLimit, StaysReached) {
  tPollLimit limit({1, kTimeMicrosecond}, 0);
  EXPECT_TRUE(limit.isReached(2000));
  EXPECT_TRUE(limit.isReached(2000));
  EXPECT_TRUE(limit.isReached(0));
}

TEST(PollLimit, CountThatGoesBackwardsAddsNoTime) {
  tPollLimit limit({1, kTimeMicrosecond}, 1'000'000);
  EXPECT_FALSE(limit.isReached(999'999));
  EXPECT_FALSE(limit.isReached(0));
  EXPECT_FALSE(limit.isReached(0));
}

TEST(PollLimit, TimeGoesOnFromWhereTheCountFellTo) {
  tPollLimit limit({1, kTimeMicrosecond}, 5000);
  EXPECT_FALSE(limit.isReached(5600));  // 600
  EXPECT_FALSE(limit.isReached(100));
  EXPECT_FALSE(limit.isReached(500));  // 1000
  EXPECT_TRUE(limit.isReached(501));
}

TEST(PollLimit, CountThatSwingsIsCountedUpwardsOnly) {
  tPollLimit limit({1, kTimeMicrosecond}, 0);
  for (int swing = 0; swing < 10; ++swing) {
    EXPECT_FALSE(limit.isReached(100));
    EXPECT_FALSE(limit.isReached(0));
  }
  EXPECT_TRUE(limit.isReached(1));
}

TEST(PollLimit, LeapOfTheCountIsTimeToo) {
  tPollLimit fine({100, kTimeNanosecond}, 0);
  EXPECT_TRUE(fine.isReached(kLargest));
  tPollLimit coarse({1, kTimeHour}, 1);
  EXPECT_TRUE(coarse.isReached(kLargest));
}

// Its step and the millisecond are more than a count can say.
TEST(PollLimit, TimebaseThatOverflowsIsNotReachedAtOnce) {
  constexpr u64 kMillisecond = 1'000'000;
  for (u64 const value : {kLargest - kMillisecond + 1, kLargest - kMillisecond + 2, kLargest}) {
    EXPECT_FALSE(tPollLimit({value, kTimeNanosecond}, 0).isReached(0));
    EXPECT_TRUE(tPollLimit({value, kTimeNanosecond}, 0).isReached(1));
  }
}
