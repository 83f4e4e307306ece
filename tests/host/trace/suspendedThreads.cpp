// A thread that is suspended in the middle of tracing holds up nobody: not who switches the
// destination, not who ends it, not who turns the line mutex.

#include <atomic>
#include <thread>

#include "keptLines.h"
#include "ntos/event.h"
#include "ntoshost/executive.h"
#include "startedModules.h"
#include "vexk/eventLog.h"

namespace {

using namespace nOXDIAG100;

// Calls the executive in its put, as all of its kind do.
class tCallingDestination : public tKeptLines {
 public:
  ~tCallingDestination() override { leaveStream(); }

  iTraceDestination& put(char const* text) override {
    return put(text, static_cast<unsigned int>(__builtin_strlen(text)));
  }
  iTraceDestination& put(char const*, unsigned int) override {
    KEVENT event;
    KeInitializeEvent(&event, NotificationEvent, 0);
    KeClearEvent(&event);
    KeClearEvent(&event);
    ++texts;
    return *this;
  }

  std::atomic<u32> texts = 0;
};

bool isGivenUp(u64 firstEvent) {
  tVexEvent event;
  for (u64 next = firstEvent; vexReadEvent(next, event); next = event.number + 1) {
    if (event.level >= kVexEventFailure) return true;
  }
  return false;
}

u64 countEvents() {
  tVexEvent event = {};
  for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) {
  }
  return event.number;
}

void putLine(tTrace& trace) {
  trace.putPrefix("test", tSSVersion(), 1, "a/file.cpp", 100, tTrace::kTraceLine);
  trace.put("text\n").put(7, 10).endl();
}

}  // namespace

TEST(SuspendedThreads, DoNotHoldUpASwitch) {
  tCallingDestination first;
  tCallingDestination second;
  tOwnTrace trace(first);
  u64 const firstEvent = countEvents() + 1;
  u32 switches = 0;
  u64 const calls = ntoshost::suspendAtEachCall(
      [&] { putLine(trace); },
      [&] {
        iTraceDestination& next = trace.getDestination() == &first ? second : first;
        trace.setDestination(next);
        ASSERT_EQ(trace.getDestination(), &next);
        ++switches;
      });
  EXPECT_GE(calls, 8u);
  EXPECT_GE(switches, 1u);
  EXPECT_FALSE(isGivenUp(firstEvent));
}

TEST(SuspendedThreads, DoNotHoldUpASwitchWithTheLineMutexOn) {
  tCallingDestination first;
  tCallingDestination second;
  tOwnTrace trace(first);
  trace.enableMutex();
  u64 const firstEvent = countEvents() + 1;
  u64 const calls = ntoshost::suspendAtEachCall(
      [&] { putLine(trace); },
      [&] {
        trace.setDestination(trace.getDestination() == &first ? second : first);
        trace.disableMutex();
        trace.enableMutex();
      });
  EXPECT_GE(calls, 8u);
  EXPECT_FALSE(isGivenUp(firstEvent));
}

// The end of a destination waits for who is within, however long that takes.
TEST(SuspendedThreads, DoNotHoldUpTheEndOfADestination) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  u64 const calls = ntoshost::suspendAtEachCall(
      [&] {
        trace.put("text").endl();
        trace.put("text").endl();
      },
      [&] {
        tCallingDestination mortal;
        trace.setDestination(mortal);
      });
  EXPECT_GE(calls, 4u);
}
