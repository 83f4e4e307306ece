#include "oxdiagk/tLineClock.h"

#include "conformance/harness.h"

namespace {

using nOXDIAG100::tLineClock;

constexpr u64 kGreatest = ~0ull;

// A clock whose last line ended at 1000, with an offset of its own for each kind of line.
struct tSetClock : tLineClock {
  tSetClock() {
    setEnd(1000);
    setOffset(kBlockEntryOffset, 1);
    setOffset(kBlockExitOffset, 20);
    setOffset(kLineOffset, 300);
  }
};

}  // namespace

TEST(LineClock, ADeltaLeavesOutTheOffsetOfItsKind) {
  tSetClock const clock;
  u64 carried = 0;
  EXPECT_EQ(u64{999}, clock.takeDelta(2000, tLineClock::kBlockEntryOffset, true, carried));
  EXPECT_EQ(u64{980}, clock.takeDelta(2000, tLineClock::kBlockExitOffset, true, carried));
  EXPECT_EQ(u64{700}, clock.takeDelta(2000, tLineClock::kLineOffset, true, carried));
  EXPECT_EQ(u64{0}, carried);
}

TEST(LineClock, AHiddenLineCarriesItsDeltaToTheNextShownOne) {
  tSetClock clock;
  u64 carried = 0;
  clock.takeDelta(2000, tLineClock::kLineOffset, false, carried);
  EXPECT_EQ(u64{700}, carried);
  clock.setEnd(3000);
  clock.takeDelta(3400, tLineClock::kLineOffset, false, carried);
  EXPECT_EQ(u64{800}, carried);
  clock.setEnd(4000);
  EXPECT_EQ(u64{850}, clock.takeDelta(4350, tLineClock::kLineOffset, true, carried));
  EXPECT_EQ(u64{0}, carried);
}

TEST(LineClock, ALineThatBeganBeforeTheLastOneEndedHasAWrappedDelta) {
  tSetClock const clock;
  u64 carried = 0;
  EXPECT_EQ(kGreatest - 300, clock.takeDelta(999, tLineClock::kLineOffset, true, carried));
  clock.takeDelta(999, tLineClock::kLineOffset, false, carried);
  EXPECT_EQ(kGreatest - 300, carried);
  EXPECT_EQ(u64{0}, clock.takeDelta(1601, tLineClock::kLineOffset, true, carried));
}

TEST(LineClock, BeginningAndEndAreApart) {
  tSetClock clock;
  clock.start(5);
  EXPECT_EQ(u64{5}, clock.getStart());
  EXPECT_EQ(u64{1000}, clock.getEnd());
  u64 const before = vexReadTimeStampCounter();
  clock.end();
  EXPECT_LE(before, clock.getEnd());
  EXPECT_EQ(u64{5}, clock.getStart());
}
