// The end of the module while a put does not come out: one test, as an image has one life.

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "capturedPrint.h"
#include "hurriedTime.h"
#include "keptLines.h"
#include "ntos/status.h"
#include "ntos/time.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/eventLog.h"
#include "vexk/module.h"
#include "vexk/threadUtility.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tTrace;

class tStickyDestination : public tKeptLines {
 public:
  iTraceDestination& put(char const*) override { return stick(); }
  iTraceDestination& put(char const*, unsigned int) override { return stick(); }

  std::atomic<u32> thread = 0;
  std::atomic<bool> mayGo = false;

 private:
  iTraceDestination& stick() {
    if (isSticky) {
      thread = tThreadUtility::getCurrentThreadId();
      while (!mayGo) std::this_thread::yield();
    }
    return *this;
  }

 public:
  std::atomic<bool> isSticky = false;
};

constexpr int kPushes = 20;

// In the hurried time.
u64 getSeconds() {
  LARGE_INTEGER countsPerSecond;
  u64 const count = static_cast<u64>(KeQueryPerformanceCounter(&countsPerSecond).QuadPart);
  return count / static_cast<u64>(countsPerSecond.QuadPart);
}

bool isLogged(std::string const& text) {
  tVexEvent event;
  for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) {
    if (std::string(event.text).find(text) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

TEST(StuckUnload, EndsAfterTenSecondsAndSaysWhoIsWithin) {
  tHurriedTime const hurry;
  tCapturedPrint captured;
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  tStickyDestination sticky;
  tTrace& trace = tTrace::getInstance();
  for (int push = 0; push < kPushes; ++push) trace.pushConfiguration();
  trace.setDestination(sticky);
  sticky.isSticky = true;
  std::thread writer([&] { trace.put("stuck").endl(); });
  while (sticky.thread == 0) std::this_thread::yield();
  char name[32];
  snprintf(name, sizeof(name), "thread 0x%X ", sticky.thread.load());
  u64 const start = getSeconds();
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  EXPECT_GE(getSeconds() - start, 10u);
  EXPECT_LT(getSeconds() - start, 10u * kPushes);
  EXPECT_TRUE(isLogged(std::string("a trace destination is left open at the end: ") + name));
  sticky.mayGo = true;
  writer.join();
  qelmkUnload();
  vexkUnload();
}
