// The end of the module while a put does not come out: one test, as an image has one life.

#include <gtest/gtest.h>

#include "capturedPrint.h"
#include "stickyDestination.h"

namespace {

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
  endModules(sticky, writer);
}
