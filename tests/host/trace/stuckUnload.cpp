// The end of the module while a put does not come out.

#include <gtest/gtest.h>

#include "capturedPrint.h"
#include "stickyDestination.h"
#include "trace/tPatience.h"

namespace {

using nOXDIAG100::tPatience;
using nOXDIAG100::tTrace;

constexpr int kFewPushes = 20;

}  // namespace

TEST(StuckUnload, EndsAfterTenSecondsAndSaysWhoIsWithin) {
  tHurriedTime const hurry;
  tCapturedPrint captured;
  ASSERT_NO_FATAL_FAILURE(startModules());
  tStickyDestination sticky;
  tTrace& trace = tTrace::getInstance();
  for (int push = 0; push < kFewPushes; ++push) trace.pushConfiguration();
  trace.setDestination(sticky);
  sticky.isSticky = true;
  std::thread writer([&] { trace.put("stuck").endl(); });
  while (sticky.thread == 0) std::this_thread::yield();
  char name[32];
  snprintf(name, sizeof(name), "thread 0x%X ", sticky.thread.load());
  unloadBeside(10u * kFewPushes);
  EXPECT_TRUE(isLogged(std::string("a trace destination is left open at the end: ") + name));
  EXPECT_TRUE(tPatience::isExhausted());  // so that no destination of the module is waited for
  endModules(sticky, writer);
  ASSERT_NO_FATAL_FAILURE(startModules());
  EXPECT_FALSE(tPatience::isExhausted());
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  qelmkUnload();
  vexkUnload();
}

// Whoever switches has the lock of all streams.
TEST(StuckUnload, LeavesAStreamAloneWhoseSwitchIsStuckItself) {
  tHurriedTime const hurry;
  tCapturedPrint captured;
  ASSERT_NO_FATAL_FAILURE(startModules());
  tStickyDestination sticky;
  tKeptLines next;
  tTrace& trace = tTrace::getInstance();
  trace.setDestination(sticky);
  sticky.isSticky = true;
  std::thread switcher([&] { trace.setDestination(next); });
  while (sticky.thread == 0) std::this_thread::yield();
  unloadBeside(100);
  EXPECT_EQ(trace.getDestination(), &sticky);
  EXPECT_TRUE(isLogged("the trace is not configured: "));
  sticky.mayGo = true;
  switcher.join();
  EXPECT_EQ(trace.getDestination(), &next);
  tTrace::destroyInstance();
  EXPECT_EQ(trace.getDestination(), nullptr);
  qelmkUnload();
  vexkUnload();
}
