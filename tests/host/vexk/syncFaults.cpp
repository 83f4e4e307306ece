// Locks when memory is short, and at an IRQL where nobody may wait.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "platformSupport.h"
#include "vexk/statusCodes.h"

namespace {

constexpr char kFaultyLock[] = "vexkHostSync::_lock";

// Opens with each allocation failing in turn; returns how many allocations an open makes.
u64 openWithEachAllocationFailing(char const* name) {
  u64 const before = ntoshost::outstandingBlocks();
  return ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 status = 0;
    iSync* sync = syncOpen(name, tSyncDescriptor{}, status);
    if (sync == nullptr) {
      EXPECT_EQ(kStatusOutOfMemory, status);
      EXPECT_EQ(before, ntoshost::outstandingBlocks());
    } else {
      EXPECT_EQ(0, status);
    }
    EXPECT_EQ(0, syncClose(sync));
  });
}

class tRaisedIrql {
 public:
  explicit tRaisedIrql(KIRQL level) { KeRaiseIrql(level, &previous); }
  ~tRaisedIrql() { KeLowerIrql(previous); }
  tRaisedIrql(tRaisedIrql const&) = delete;
  tRaisedIrql& operator=(tRaisedIrql const&) = delete;

 private:
  KIRQL previous;
};

}  // namespace

TEST(VexkHostSync, OpeningFailsCleanlyAtEachAllocation) {
  tRunningPlatform const platform;
  EXPECT_LE(1u, openWithEachAllocationFailing(nullptr));
  EXPECT_LE(1u, openWithEachAllocationFailing(kFaultyLock));
}

TEST(VexkHostSync, OpeningAgainFailsCleanlyAtEachAllocation) {
  tRunningPlatform const platform;
  tOpenLock const first(kFaultyLock);
  EXPECT_LE(1u, openWithEachAllocationFailing(kFaultyLock));
  EXPECT_EQ(0, first->acquire(0));
  EXPECT_EQ(0, first->release());
}

TEST(VexkHostSync, ClosingTheLastHandleGivesTheMemoryBack) {
  tRunningPlatform const platform;
  u64 const before = ntoshost::outstandingBlocks();
  {
    tOpenLock const first(kFaultyLock);
    tOpenLock const second(kFaultyLock);
    EXPECT_LT(before, ntoshost::outstandingBlocks());
  }
  EXPECT_EQ(before, ntoshost::outstandingBlocks());
}

TEST(VexkHostSync, UsingALockAllocatesNothing) {
  tRunningPlatform const platform;
  tOpenLock const lock(kFaultyLock);
  ntoshost::watchCalls(ntoshost::kFaultAll);
  EXPECT_EQ(0, lock->acquire(kSyncWaitForever));
  EXPECT_EQ(0, lock->acquire(kSyncWaitForever));
  EXPECT_EQ(0, lock->release());
  EXPECT_EQ(0, lock->release());
  EXPECT_EQ(0u, ntoshost::fallibleCallsSeen());
}

TEST(VexkHostSync, NobodyWaitsAboveApcLevel) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    EXPECT_EQ(kStatusSyncIrqlTooHigh, lock->acquire(kSyncWaitForever));
    EXPECT_EQ(kStatusSyncIrqlTooHigh, lock->acquire(0));
    EXPECT_EQ(kStatusSyncNotOwner, lock->release());
  }
  EXPECT_EQ(0, lock->acquire(0));
  EXPECT_EQ(0, lock->release());
}

TEST(VexkHostSync, AnOwnerAboveApcLevelCannotAcquireAgain) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  EXPECT_EQ(0, lock->acquire(0));
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    EXPECT_EQ(kStatusSyncIrqlTooHigh, lock->acquire(0));
  }
  EXPECT_EQ(0, lock->release());
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
}

TEST(VexkHostSync, WorksAtApcLevel) {
  tRunningPlatform const platform;
  tRaisedIrql const raised(APC_LEVEL);
  tOpenLock const lock(kFaultyLock);
  EXPECT_EQ(0, lock.status);
  EXPECT_EQ(0, lock->acquire(kSyncWaitForever));
  EXPECT_EQ(0, lock->release());
}
