// The end of the module while a line that holds the line mutex does not come out of a put: one
// test, as an image has one life.

#include <gtest/gtest.h>

#include "capturedPrint.h"
#include "stickyDestination.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tTrace;

constexpr int kPushes = 2000;
constexpr u64 kMostSeconds = 100;  // on a loaded machine; each push that waits adds a tenth of one

void writeLine(tTrace& trace) {
  trace.putPrefix("unload", tSSVersion(), 1, "stuck.cpp", 100, tTrace::kTraceLine).put("x").endl();
}

// What the line can no longer do, whose stream has ended; a thread must not end with a lock.
void releaseLineLock() {
  i32 status = 0;
  iSync* lock = syncOpen("nOXDIAG100::tTrace::_mutex", tSyncDescriptor{}, status);
  ASSERT_NE(lock, nullptr);
  EXPECT_GE(lock->release(), 0);
  syncClose(lock);
}

}  // namespace

TEST(StuckLockedUnload, WaitsOnceHoweverManyConfigurationsSwitchTheMutex) {
  tHurriedTime const hurry;
  tCapturedPrint captured;
  ASSERT_NO_FATAL_FAILURE(startModules());
  tStickyDestination sticky;
  tTrace& trace = tTrace::getInstance();
  for (int push = 0; push < kPushes; ++push) {
    trace.configure(push % 2 == 0 ? "--mutex on" : "--mutex off");
    trace.pushConfiguration();
  }
  trace.enableMutex();
  trace.setDestination(sticky);
  sticky.isSticky = true;
  std::thread writer([&] {
    writeLine(trace);
    releaseLineLock();
  });
  while (sticky.thread == 0) std::this_thread::yield();
  unloadBeside(kMostSeconds);
  EXPECT_TRUE(isLogged("a trace destination is left open at the end: "));
  EXPECT_FALSE(isLogged("the line mutex is not switched"));
  endModules(sticky, writer);
}
