// The parts of a stream each by itself, in one thread: its patience, what it holds, how it turns
// the line mutex, and what the opening of a line leaves in it.

#include "newEvents.h"
#include "ntoshost/time.h"
#include "ownParts.h"
#include "startedModules.h"
#include "trace/tLineOpening.h"
#include "trace/tPatience.h"
#include "trace/tStreamHold.h"
#include "trace/turnMutex.h"
#include "vexk/statusCodes.h"
#include "vexk/threadUtility.h"

namespace {

using namespace nOXDIAG100;

constexpr i64 kCountsOfMillisecond = 10'000;

// The performance counter stands still, but for what a test says.
class Patience : public testing::Test {
 protected:
  Patience() { ntoshost::setCounterRate(0); }
  ~Patience() override { ntoshost::setTimeRate(1); }
};

// A stream with the line mutex on, whose lock does what a test says.
class StreamParts : public testing::Test {
 protected:
  StreamParts() {
    EXPECT_TRUE(tStreamLock::acquire());
    own.mutexObject = &told;
    own.turn(tLineShape::kMutex, true);
  }
  ~StreamParts() override {
    own.mutexObject = nullptr;
    tStreamLock::release();
  }

  bool openLine(u32 verbosity = 100) {
    return tLineOpening(own, kOrigin, verbosity, tTrace::kTraceLine).openIfShown(nullptr);
  }

  static constexpr tLineOrigin kOrigin{"test", "file", tSSVersion(), 1};

  tCallingKept kept;
  tOwnParts own{kept};
  tToldLock told;
  tPatience const patience;
};

}  // namespace

TEST_F(Patience, HasTenSecondsAtItsBeginning) {
  EXPECT_EQ(tPatience().getRest(), kMostPatience);
}

TEST_F(Patience, IsOverAfterTenSecondsOfTheCounter) {
  tPatience const patience;
  ntoshost::moveTime(9'999 * kCountsOfMillisecond);
  EXPECT_EQ(patience.getRest(), 1u);
  EXPECT_FALSE(patience.isOver() || patience.hasPassed());
  ntoshost::moveTime(kCountsOfMillisecond);
  EXPECT_EQ(patience.getRest(), 0u);
  EXPECT_TRUE(patience.isOver() && patience.hasPassed());
  ntoshost::moveTime(kCountsOfMillisecond);
  EXPECT_EQ(patience.getRest(), 0u);
}

TEST_F(Patience, IsOverAfterTenSecondsOfWaits) {
  tPatience const patience;
  patience.addWait(9'999);
  EXPECT_EQ(patience.getRest(), 1u);
  EXPECT_FALSE(patience.hasPassed());
  patience.wait();
  EXPECT_TRUE(patience.isOver() && patience.hasPassed());
}

TEST_F(Patience, IsOverAtOnceWhileItIsExhausted) {
  tPatience const patience;
  {
    tPatienceScope const scope;
    tPatience::setExhausted(true);
    EXPECT_TRUE(patience.isOver());
    EXPECT_FALSE(patience.hasPassed());
  }
  EXPECT_FALSE(patience.isOver());
}

TEST_F(StreamParts, AHoldGivesBackTheLinesThatItHasTaken) {
  for (int time = 1; time <= 2; ++time) {
    {
      tStreamHold hold;
      EXPECT_TRUE(hold.holdLines(own, patience));
      EXPECT_TRUE(hold.holdLines(own, patience));
      EXPECT_EQ(own.lock.getOwner(), tThreadUtility::getCurrentThreadId());
    }
    EXPECT_EQ(told.acquired, time);
    EXPECT_EQ(told.released, time);
  }
}

TEST_F(StreamParts, AHoldLeavesTheLinesOfItsThreadAlone) {
  own.lock.begin(kSyncWaitForever);
  { tStreamHold const hold; }
  EXPECT_EQ(told.released, 0);
  EXPECT_EQ(own.lock.getOwner(), tThreadUtility::getCurrentThreadId());
  own.lock.end();
}

TEST_F(StreamParts, AHoldTakesNoLinesWithoutTheMutex) {
  own.turn(tLineShape::kMutex, false);
  tStreamHold hold;
  EXPECT_TRUE(hold.holdLines(own, patience));
  EXPECT_EQ(told.acquired, 0);
}

TEST_F(StreamParts, LinesThatCouldNotBeHeldAreNotHeldTheNextTimeEither) {
  told.status = kStatusSyncTimeout;
  tStreamHold hold;
  EXPECT_FALSE(hold.holdLines(own, patience));
  EXPECT_FALSE(hold.holdLines(own, patience));
  EXPECT_EQ(own.lock.holders, 0u);
}

TEST_F(StreamParts, ALockThatFailsIsNotTheLinesAndOneThatIsTakenHasTimedOut) {
  told.status = kStatusSyncTooDeep;
  EXPECT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kNotLocked);
  told.status = kStatusSyncTimeout;
  EXPECT_EQ(own.lock.begin(0), tLineLock::kTimedOut);
  EXPECT_EQ(own.lock.getOwner(), 0u);
}

TEST_F(StreamParts, TurningTheMutexGivesTheLockBack) {
  turnMutex(own, false);
  EXPECT_FALSE(own.getShape().isOn(tLineShape::kMutex));
  EXPECT_EQ(told.acquired, 1);
  EXPECT_EQ(told.released, 1);
}

TEST_F(StreamParts, AMutexWhoseLockFailsIsTurnedAndNothingGivenBack) {
  for (i32 const status :
       {kStatusSyncNotOwner, kStatusSyncTooDeep, kStatusSyncIrqlTooHigh, kStatusSyncFailed}) {
    told.status = status;
    own.turn(tLineShape::kMutex, true);
    turnMutex(own, false);
    EXPECT_FALSE(own.getShape().isOn(tLineShape::kMutex)) << status;
  }
  EXPECT_EQ(told.released, 0);
}

TEST_F(StreamParts, TurningTheMutexWaitsForALineThatIsNotStuck) {
  tPatienceScope const scope;
  tPatience::setExhausted(true);
  tNewEvents const events;
  told.status = kStatusSyncTimeout;
  told.onAcquire = [&] {
    if (told.acquired == 3) told.status = 0;
  };
  turnMutex(own, false);
  EXPECT_FALSE(own.getShape().isOn(tLineShape::kMutex));
  EXPECT_EQ(told.acquired, 3);
  EXPECT_EQ(told.released, 1);
  EXPECT_EQ(events.read(), "");
}

TEST_F(StreamParts, TurningTheMutexGivesUpALineThatIsStuck) {
  tPatienceScope const scope;
  tPatience::setExhausted(true);
  tNewEvents const events;
  {
    tSeemingThread const other(kAnotherThread);
    own.lock.begin(kSyncWaitForever);
  }
  tTextOfAnother const text(own.slot, kept);
  told.status = kStatusSyncTimeout;
  turnMutex(own, false);
  EXPECT_TRUE(own.getShape().isOn(tLineShape::kMutex));
  EXPECT_EQ(told.released, 0);
  EXPECT_NE(events.read().find("the line mutex is not switched: thread 0xFFFFFFF1 is still within "
                               "the put of its line after 10 s"),
            std::string::npos)
      << events.read();
}

TEST_F(StreamParts, ALineWithATimeBeginsBeforeItWaits) {
  own.turn(tLineShape::kTimeStamp, true);
  u64 wait = 0;
  told.onAcquire = [&] { wait = vexReadTimeStampCounter(); };
  u64 const before = vexReadTimeStampCounter();
  EXPECT_TRUE(openLine());
  EXPECT_GT(own.clock.getStart(), before);
  EXPECT_LT(own.clock.getStart(), wait);
}

TEST_F(StreamParts, ALineWhoseTimeIsSwitchedOnMeanwhileBeginsBehindItsWait) {
  u64 wait = 0;
  told.onAcquire = [&] {
    own.turn(tLineShape::kTimeStamp, true);
    wait = vexReadTimeStampCounter();
  };
  EXPECT_TRUE(openLine());
  EXPECT_GT(own.clock.getStart(), wait);
}

TEST_F(StreamParts, ALineWithoutATimeReadsNone) {
  own.clock.start(7);
  EXPECT_TRUE(openLine());
  EXPECT_EQ(own.clock.getStart(), 7u);
}

TEST_F(StreamParts, ALineThatIsNotShownEndsAtOnce) {
  EXPECT_FALSE(openLine(1));
  EXPECT_EQ(told.acquired, 1);
  EXPECT_EQ(told.released, 1);
  EXPECT_NE(own.clock.getEnd(), 0u);
}

TEST_F(StreamParts, ALineWithinAHiddenOneIsShownAndTheOtherStaysHidden) {
  own.beginVerdict(false);
  EXPECT_TRUE(openLine());
  EXPECT_TRUE(own.isWriting());
  own.endVerdict();
  EXPECT_FALSE(own.isWriting());
  own.endVerdict();
  EXPECT_TRUE(own.isWriting());
}

TEST_F(StreamParts, ALineWithALimitIsLockedAsAnyOther) {
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(tLineOpening(own, kOrigin, 100, tTrace::kTraceLine)
                  .openIfAdmitted(nullptr, limit, tLineLimit::kOnce, 1, leftOut));
  EXPECT_EQ(told.acquired, 1);
}

TEST_F(StreamParts, ALineOfADisabledStreamDoesNotUseUpItsLimit) {
  tLineLimit limit;
  u32 leftOut = 0;
  own.turn(tLineShape::kEnabled, false);
  EXPECT_FALSE(tLineOpening(own, kOrigin, 100, tTrace::kTraceLine)
                   .openIfAdmitted(nullptr, limit, tLineLimit::kOnce, 1, leftOut));
  EXPECT_TRUE(limit.admit(tLineLimit::kOnce, 1, leftOut));
}

TEST_F(StreamParts, ALineOfItsOwnWithinAHiddenOneHasNoEmptyPiece) {
  own.beginVerdict(false);
  own.announce("announced");
  EXPECT_EQ(kept.pieces, (std::vector<std::string>{"announced", "\n"}));
  own.endVerdict();
}

TEST_F(StreamParts, ALineOfItsOwnEndsThen) {
  u64 const before = vexReadTimeStampCounter();
  own.announce("announced");
  EXPECT_GT(own.clock.getEnd(), before);
}

// The line about those that were left out is put first, and its put may turn the stream off.
TEST(LimitedLines, ALineThatIsHiddenByTheLineInFrontIsNotOpened) {
  tCallingKept kept;
  tOwnTrace trace(kept);
  tLineLimit limit;
  constexpr tLineOrigin kOrigin{"test", "file", tSSVersion(), 1};
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admitAt(0, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(0, 1, leftOut));
  kept.onPut = [&](std::string const&) { trace.disable(); };
  ntoshost::moveTime(2'000 * kCountsOfMillisecond);
  EXPECT_EQ(trace.openLine(kOrigin, 100, limit, tLineLimit::kAtMostASecond, 1), nullptr);
  EXPECT_TRUE(kept.has("1 line left out"));
}
