// Lines with a limit, in every order of the threads that write them.

#include "oxdiagk/tLineLimit.h"

#include "schedules/tExplorer.h"

namespace {

using nOXDIAG100::tLineLimit;

// Each thread comes once by a line that is shown once.
class tFirstLine {
 public:
  static constexpr unsigned kThreads = 3;

  void run(unsigned thread) {
    u32 leftOut = 0;
    isShown[thread] = limit.admit(tLineLimit::kOnce, 0, leftOut);
  }
  void finish() { EXPECT_EQ(isShown[0] + isShown[1] + isShown[2], 1); }

 private:
  tLineLimit limit;
  bool isShown[kThreads] = {};
};

// Two threads with two lines each, of which a second shows three.
class tOneSecond {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned /*thread*/) {
    for (u32 line = 0; line < kLines; ++line) {
      u32 leftOut = 0;
      shown += limit.admitAt(kNow, kMost, leftOut) ? 1 : 0;
      told += leftOut;
    }
  }
  void finish() {
    u32 leftOut = 0;
    EXPECT_EQ(shown, kMost);
    EXPECT_TRUE(limit.admitAt(kNow + 1000, kMost, leftOut));
    EXPECT_EQ(told + leftOut, kThreads * kLines - kMost);
  }

 private:
  static constexpr u32 kNow = 5000;
  static constexpr u32 kLines = 2;
  static constexpr u32 kMost = 3;

  tLineLimit limit;
  u32 shown = 0;
  u32 told = 0;
};

}  // namespace

TEST(LineLimitSchedules, AFirstLineIsShownOnce) {
  explore<tFirstLine>("limitOnce", {tReach::kExhaustive, 0});
}

TEST(LineLimitSchedules, ASecondShowsAsManyLinesAndCountsTheOthers) {
  explore<tOneSecond>("limitSecond", {3, 500});
}
