// How a request's thread comes back: a suspended one holds up nobody who waits for the dispatcher,
// and one that has kept a lock is named.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "ntoshost/executive.h"
#include "platformSupport.h"
#include "trace/capturedPrint.h"
#include "vexk/iLib.h"
#include "vexk/moduleInfo.h"
#include "vexkntos/tCriticalRegionGuard.h"
#include "vexkntos/tReturnWatch.h"

namespace {

constexpr char kReturnName[] = "nTEST://nReturn";
constexpr char kLockName[] = "nTEST::_mutex";

i32 deliver() {
  i32 status = 0;
  iLib::deliver(kReturnName, sizeof(kReturnName) - 1, 1, status);
  return status;
}

// A dispatcher of a registered module, as long as it lives.
class tServed : public iLib::iDispatcher {
 public:
  explicit tServed(std::function<void()> work) : iDispatcher(kReturnName), work(std::move(work)) {
    iLib::exportDispatcher(*this, status);
    libRegisterModuleWithVEX(info, status);
    EXPECT_EQ(status, 0);
  }
  ~tServed() override {
    libUnregisterModuleWithVEX(info, status);
    iLib::unexportDispatcher(*this, status);
    EXPECT_EQ(status, 0);
  }

  void dispatch(u64 /*request*/) override { work(); }

 private:
  static i32 enter(u32 /*reason*/) { return 0; }

  std::function<void()> work;
  i32 status = 0;
  tModulePackage package = {};
  _tLibModuleInfo info = {&package, "test", &enter, 0};
};

void makeCalls() {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  KeClearEvent(&event);
  KeClearEvent(&event);
}

// What a request prints that does this.
std::string printOf(std::function<void()> work) {
  tServed const served(std::move(work));
  tCapturedPrint const print;
  EXPECT_EQ(deliver(), 0);
  return print.text();
}

class RequestReturn : public testing::Test {
 protected:
  tRunningPlatform platform;
};

}  // namespace

// Otherwise the end of the dispatcher would wait until the thread is resumed, and so for ever.
TEST_F(RequestReturn, ASuspendedOneDoesNotHoldUpTheEndOfItsModule) {
  auto served = std::make_unique<tServed>(makeCalls);
  u64 const calls = ntoshost::suspendAtEachCall([] { deliver(); },
                                                [&] {
                                                  served.reset();
                                                  served = std::make_unique<tServed>(makeCalls);
                                                });
  EXPECT_GE(calls, 4u);
}

TEST_F(RequestReturn, OneThatGivesBackWhatItTookIsNotMentioned) {
  tOpenLock lock(kLockName);
  EXPECT_EQ(printOf([&] {
              EXPECT_EQ(lock->acquire(kSyncWaitForever), 0);
              lock->release();
            }),
            "");
}

TEST_F(RequestReturn, OneThatKeepsALockIsNamedWithTheLock) {
  tOpenLock lock(kLockName);
  EXPECT_EQ(printOf([&] { EXPECT_EQ(lock->acquire(kSyncWaitForever), 0); }),
            "[vexk] the request to nTEST://nReturn returns while its thread holds the lock "
            "'nTEST::_mutex'\n");
  lock->release();
}

TEST_F(RequestReturn, APrivateLockHasNoName) {
  tOpenLock lock(nullptr);
  EXPECT_EQ(printOf([&] { EXPECT_EQ(lock->acquire(kSyncWaitForever), 0); }),
            "[vexk] the request to nTEST://nReturn returns while its thread holds the lock ''\n");
  lock->release();
}

TEST_F(RequestReturn, OneThatStaysInARegionIsNamed) {
  EXPECT_EQ(printOf(KeEnterCriticalRegion),
            "[vexk] the request to nTEST://nReturn returns within a critical region\n");
  KeLeaveCriticalRegion();
}

// At DISPATCH_LEVEL nobody may look for it.
TEST_F(RequestReturn, TheLockIsNamedUpToApcLevel) {
  tOpenLock lock(kLockName);
  auto const returnAt = [&](KIRQL level) {
    tCapturedPrint const print;
    KIRQL before = PASSIVE_LEVEL;
    {
      tReturnWatch const watch("this", 4);
      EXPECT_EQ(lock->acquire(kSyncWaitForever), 0);
      KeRaiseIrql(level, &before);
    }
    KeLowerIrql(before);
    lock->release();
    return print.text();
  };
  EXPECT_EQ(returnAt(APC_LEVEL),
            "[vexk] the request to this returns while its thread holds the lock 'nTEST::_mutex'\n");
  EXPECT_EQ(returnAt(DISPATCH_LEVEL),
            "[vexk] the request to this returns within a critical region\n");
}

TEST_F(RequestReturn, WhatTheThreadHadBeforeDoesNotCount) {
  tOpenLock lock(kLockName);
  EXPECT_EQ(lock->acquire(kSyncWaitForever), 0);
  EXPECT_EQ(printOf([&] { EXPECT_EQ(lock->acquire(kSyncWaitForever), 0); }), "");
  lock->release();
  lock->release();
}

TEST_F(RequestReturn, RunsInACriticalRegion) {
  bool isInRegion = false;
  printOf([&] { isInRegion = KeAreApcsDisabled() != 0 && KeAreAllApcsDisabled() == 0; });
  EXPECT_TRUE(isInRegion);
  EXPECT_EQ(KeAreApcsDisabled(), 0);
}

TEST(CriticalRegionGuard, DoesNothingAtDispatchLevel) {
  KIRQL before;
  KeRaiseIrql(DISPATCH_LEVEL, &before);
  {
    tCriticalRegionGuard const guard;
    EXPECT_EQ(KeAreApcsDisabled(), 0);
  }
  KeLowerIrql(APC_LEVEL);
  {
    tCriticalRegionGuard const guard;
    EXPECT_EQ(KeAreApcsDisabled(), 1);
  }
  EXPECT_EQ(KeAreApcsDisabled(), 0);
  KeLowerIrql(before);
}
