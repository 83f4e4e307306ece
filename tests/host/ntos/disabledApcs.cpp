// What a thread is told about the APCs that it gets.

#include <gtest/gtest.h>

#include <thread>

#include "ntos/thread.h"
#include "ntoshost/thread.h"
#include "waiting.h"

namespace {

void expectApcs(bool areNormalDisabled, bool areAllDisabled) {
  EXPECT_EQ(KeAreApcsDisabled() != 0, areNormalDisabled);
  EXPECT_EQ(KeAreAllApcsDisabled() != 0, areAllDisabled);
}

// The calling thread's level stays raised: only for what dies.
void raiseTo(KIRQL level) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
}

}  // namespace

TEST(DisabledApcs, AreNoneAtFirst) {
  expectApcs(false, false);
}

TEST(DisabledApcs, AreTheNormalOnesInACriticalRegion) {
  KeEnterCriticalRegion();
  KeEnterCriticalRegion();
  expectApcs(true, false);
  KeLeaveCriticalRegion();
  expectApcs(true, false);
  KeLeaveCriticalRegion();
  expectApcs(false, false);
}

TEST(DisabledApcs, AreAllInAGuardedRegion) {
  KeEnterGuardedRegion();
  expectApcs(true, true);
  KeEnterCriticalRegion();
  KeLeaveGuardedRegion();
  expectApcs(true, false);
  KeLeaveCriticalRegion();
  expectApcs(false, false);
}

TEST(DisabledApcs, AreAllInACriticalRegionWhereTheKernelSaysSo) {
  ntoshost::sayAllApcsDisabledInRegions(true);
  expectApcs(false, false);
  KeEnterCriticalRegion();
  expectApcs(true, true);
  ntoshost::sayAllApcsDisabledInRegions(false);
  expectApcs(true, false);
  KeLeaveCriticalRegion();
}

TEST(DisabledApcs, AreTheNormalOnesWithAMutex) {
  KMUTEX mutex;
  KeInitializeMutex(&mutex, 0);
  waitForever(&mutex);
  waitForever(&mutex);
  expectApcs(true, false);
  KeReleaseMutex(&mutex, 0);
  expectApcs(true, false);
  KeReleaseMutex(&mutex, 0);
  expectApcs(false, false);
}

TEST(DisabledApcs, AreAllAtRaisedLevels) {
  for (KIRQL level : {APC_LEVEL, DISPATCH_LEVEL}) {
    KIRQL before;
    KeRaiseIrql(level, &before);
    expectApcs(false, true);
    KeLowerIrql(before);
  }
  expectApcs(false, false);
}

TEST(DisabledApcs, AreOfOneThread) {
  KeEnterGuardedRegion();
  std::thread([] { expectApcs(false, false); }).join();
  KeLeaveGuardedRegion();
}

TEST(DisabledApcsDeathTest, NobodyAsksAboveDispatchLevel) {
  EXPECT_DEATH((raiseTo(3), KeAreApcsDisabled()), "KeAreApcsDisabled was called at IRQL 3");
  EXPECT_DEATH((raiseTo(3), KeAreAllApcsDisabled()), "KeAreAllApcsDisabled was called at IRQL 3");
}

TEST(DisabledApcsDeathTest, AGuardedRegionIsLeftByTheThreadThatEnteredIt) {
  EXPECT_DEATH(KeLeaveGuardedRegion(),
               "ntos: KeLeaveGuardedRegion was called by a thread that is in no guarded region");
  KeEnterCriticalRegion();
  EXPECT_DEATH(KeLeaveGuardedRegion(), "that is in no guarded region");
  KeLeaveCriticalRegion();
}

TEST(DisabledApcsDeathTest, AThreadEndsOutsideGuardedRegions) {
  EXPECT_DEATH(std::thread(KeEnterGuardedRegion).join(),
               "ntos: A thread ended within a critical region\\.\n$");
}

TEST(DisabledApcsDeathTest, GuardedRegionsAreEnteredUpToApcLevel) {
  EXPECT_DEATH((raiseTo(DISPATCH_LEVEL), KeEnterGuardedRegion()), "was called at IRQL 2");
}
