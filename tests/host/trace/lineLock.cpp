// The lock of a stream's lines by itself: when it cannot be opened, several times in one thread,
// and between threads.

#include <thread>

#include "ntoshost/faults.h"
#include "oxdiagk/tLineLock.h"
#include "startedModules.h"
#include "vexk/sync.h"
#include "vexk/threadUtility.h"

using nOXDIAG100::tLineLock;

namespace {

constexpr u32 kShortTime = 1;  // milliseconds

struct tOwnLock {
  ~tOwnLock() { lock.close(); }

  iSync* sync = nullptr;
  u32 token[2] = {};
  tLineLock lock{sync, token};
};

tLineLock::tStart beginElsewhere(tLineLock& lock) {
  tLineLock::tStart start = tLineLock::kLocked;
  std::thread([&] {
    start = lock.begin(kShortTime);
    lock.end();
  }).join();
  return start;
}

}  // namespace

TEST(LineLock, ALockThatIsNotOpenLocksNothing) {
  tOwnLock own;
  EXPECT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kNotLocked);
  EXPECT_EQ(own.lock.getOwner(), 0u);
  own.lock.end();
  EXPECT_EQ(own.lock.get(), nullptr);
}

TEST(LineLock, ALockThatCannotBeOpenedMayBeOpenedLater) {
  tOwnLock own;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  own.lock.open();
  ntoshost::clearFaults();
  EXPECT_EQ(own.lock.get(), nullptr);
  EXPECT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kNotLocked);
  own.lock.open();
  EXPECT_NE(own.lock.get(), nullptr);
}

TEST(LineLock, WhatIsOpenStaysAsItIs) {
  tOwnLock own;
  own.lock.open();
  iSync* const sync = own.lock.get();
  own.lock.open();
  EXPECT_EQ(own.lock.get(), sync);
}

TEST(LineLock, EachBeginNeedsItsEnd) {
  tOwnLock own;
  own.lock.open();
  EXPECT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kLocked);
  EXPECT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kLocked);
  EXPECT_EQ(own.lock.getOwner(), tThreadUtility::getCurrentThreadId());
  EXPECT_EQ(beginElsewhere(own.lock), tLineLock::kTimedOut);
  own.lock.end();
  EXPECT_EQ(own.lock.getOwner(), tThreadUtility::getCurrentThreadId());
  EXPECT_EQ(beginElsewhere(own.lock), tLineLock::kTimedOut);
  own.lock.end();
  EXPECT_EQ(own.lock.getOwner(), 0u);
  EXPECT_EQ(beginElsewhere(own.lock), tLineLock::kLocked);
}

TEST(LineLock, AnEndOfAnotherThreadGivesNothingBack) {
  tOwnLock own;
  own.lock.open();
  own.lock.begin(kSyncWaitForever);
  std::thread([&] { own.lock.end(); }).join();
  EXPECT_EQ(own.lock.getOwner(), tThreadUtility::getCurrentThreadId());
  own.lock.end();
  own.lock.end();
  EXPECT_EQ(beginElsewhere(own.lock), tLineLock::kLocked);
}

TEST(LineLock, ClosingGivesBackWhatTheThreadHas) {
  tOwnLock own;
  tOwnLock other;
  own.lock.open();
  other.lock.open();
  own.lock.begin(kSyncWaitForever);
  own.lock.begin(kSyncWaitForever);
  EXPECT_EQ(beginElsewhere(other.lock), tLineLock::kTimedOut);
  own.lock.close();
  EXPECT_EQ(own.lock.get(), nullptr);
  EXPECT_EQ(beginElsewhere(other.lock), tLineLock::kLocked);
}

TEST(LineLock, EitherHalfOfATokenMakesALockOfItsOwn) {
  constexpr u32 kTokens[][2] = {{0, 0}, {7, 0}, {8, 0}, {0, 7}, {0, 8}, {7, 7}};
  tOwnLock all[6];
  for (u32 index = 0; index < 6; ++index) {
    all[index].token[0] = kTokens[index][0];
    all[index].token[1] = kTokens[index][1];
    all[index].lock.open();
  }
  for (tOwnLock& own : all) {
    ASSERT_EQ(own.lock.begin(kSyncWaitForever), tLineLock::kLocked);
    for (tOwnLock& other : all) {
      EXPECT_EQ(other.lock.isSharedWith(own.lock), &other == &own);
      EXPECT_EQ(beginElsewhere(other.lock),
                &other == &own ? tLineLock::kTimedOut : tLineLock::kLocked);
    }
    own.lock.end();
  }
}
