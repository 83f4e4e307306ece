// The platform's lock, in every order of its threads, times that run out included.

#include "schedules/tExplorer.h"
#include "trace/startedModules.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace {

class tOpenLock {
 public:
  tOpenLock() {
    i32 status = 0;
    sync = syncOpen(nullptr, {}, status);
    EXPECT_EQ(status, 0);
  }
  ~tOpenLock() {
    EXPECT_EQ(sync->acquire(0), 0);  // nobody has it, and nobody is counted
    EXPECT_EQ(sync->release(), 0);
    EXPECT_EQ(syncClose(sync), 0);
  }
  tOpenLock(tOpenLock const&) = delete;
  tOpenLock& operator=(tOpenLock const&) = delete;

  // Whether the lock was had: alone.
  bool use(u32 milliseconds) {
    i32 const status = sync->acquire(milliseconds);
    if (status < 0) {
      EXPECT_EQ(status, kStatusSyncTimeout);
      return false;
    }
    EXPECT_EQ(owners++, 0);
    ntoshost::schedulePoint();
    EXPECT_EQ(--owners, 0);
    EXPECT_EQ(sync->release(), 0);
    return true;
  }

 private:
  iSync* sync = nullptr;
  int owners = 0;
};

// `times` in milliseconds: how long each thread waits.
template <u32... times>
class tLockUsers {
 public:
  static constexpr unsigned kThreads = sizeof...(times);

  void run(unsigned thread) { had[thread] = lock.use(kTimes[thread]); }
  void finish() {
    bool isAny = false;
    for (unsigned thread = 0; thread < kThreads; ++thread) {
      isAny |= had[thread];
      EXPECT_TRUE(had[thread] || kTimes[thread] != kSyncWaitForever);
    }
    EXPECT_TRUE(isAny);
  }

 private:
  static constexpr u32 kTimes[] = {times...};

  tOpenLock lock;
  bool had[kThreads] = {};
};

// One who gives up waiting and wants the lock again, beside one who uses it twice.
class tGivenUp {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    lock.use(thread == 0 ? kSyncWaitForever : 5);
    EXPECT_TRUE(lock.use(kSyncWaitForever));
  }
  void finish() {}

 private:
  tOpenLock lock;
};

}  // namespace

TEST(LockSchedules, OneThreadAtATimeHasIt) {
  explore<tLockUsers<kSyncWaitForever, kSyncWaitForever>>("lockTwo", {tReach::kExhaustive, 0});
}

TEST(LockSchedules, ThreeThreadsHaveItOneAfterTheOther) {
  explore<tLockUsers<kSyncWaitForever, kSyncWaitForever, kSyncWaitForever>>("lockThree", {1, 500});
}

TEST(LockSchedules, WhoWaitsNoLongerTakesNobodysTurn) {
  explore<tLockUsers<kSyncWaitForever, 5>>("lockTimed", {3, 500});
  explore<tLockUsers<kSyncWaitForever, 5, 5>>("lockTimedThree", {1, 500});
}

TEST(LockSchedules, WhoGaveUpLeavesNobodysTurnBehind) {
  explore<tGivenUp>("lockGivenUp", {2, 1000});
}

TEST(LockSchedules, ATryHasItOrNot) {
  explore<tLockUsers<kSyncWaitForever, 0, 0>>("lockTries", {1, 500});
}
