// A performance counter that goes back while somebody waits.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "keptLines.h"
#include "ntoshost/time.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"

using namespace nOXDIAG100;

namespace {

// A put that returns when it may.
class tSlowPut final : public tKeptLines {
 public:
  ~tSlowPut() override { leaveStream(); }

  iTraceDestination& put(char const*, unsigned int) override {
    isWithin = true;
    while (!mayGo) std::this_thread::yield();
    return *this;
  }

  std::atomic<bool> isWithin = false;
  std::atomic<bool> mayGo = false;
};

}  // namespace

// A counter that falls behind a wait's begin says that no time has passed, and not that all has.
TEST(CounterThatFallsBack, EndsNoWait) {
  constexpr i64 kHour = 3'600 * i64{10'000'000};
  tSlowPut slow;
  tKeptLines next;
  {
    tOwnTrace trace(slow);
    std::thread writer([&] { trace.put("slow").endl(); });
    while (!slow.isWithin) std::this_thread::yield();
    // The counter falls back while the switch waits, and the switch looks at it then.
    std::thread clock([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      ntoshost::moveTime(-kHour);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));  // for some looks
      slow.mayGo = true;
    });
    EXPECT_EQ(trace.setDestination(next), &slow);
    EXPECT_EQ(trace.getDestination(), &next);
    writer.join();
    clock.join();
    trace.setDestination(tVEXTraceDestination::getInstance());
  }
  ntoshost::moveTime(kHour);
}
