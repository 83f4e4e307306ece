// Threads of which one runs at a time, as a chooser says.

#include "ntoshost/schedule.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "ntos/time.h"
#include "waiting.h"

namespace {

using ntoshost::kMostScheduledThreads;
using ntoshost::ScheduleChooser;
using ntoshost::SchedulePoint;

constexpr u64 kMostPoints = 1'000;

// Follows a list of choices, then lets each thread run to its end, the first first.
class tList {
 public:
  explicit tList(std::vector<u32> wanted) : list(std::move(wanted)) {}

  u64 run(std::vector<std::function<void()>> bodies) {
    std::vector<ntoshost::ScheduledBody> scheduled;
    for (auto& body : bodies) {
      scheduled.push_back(
          {[](void* context) { (*static_cast<std::function<void()>*>(context))(); }, &body});
    }
    ScheduleChooser const chooser = {[](void* context, SchedulePoint const& point) {
                                       return static_cast<tList*>(context)->choose(point);
                                     },
                                     this, kMostPoints};
    return ntoshost::runScheduled(scheduled.data(), static_cast<u32>(scheduled.size()), chooser);
  }

  std::vector<SchedulePoint> points;

 private:
  u32 choose(SchedulePoint const& point) {
    points.push_back(point);
    if (points.size() <= list.size()) return list[points.size() - 1];
    return point.mayStay ? point.current : static_cast<u32>(__builtin_ctz(point.choices));
  }

  std::vector<u32> const list;
};

std::function<void()> writer(std::string& text, char letter) {
  return [&text, letter] {
    for (int i = 0; i < 3; ++i) {
      text += letter;
      ntoshost::schedulePoint();
    }
  };
}

class SchedulesDeathTest : public testing::Test {
 protected:
  SchedulesDeathTest() {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ExInitializeFastMutex(&mutexes[0]);
    ExInitializeFastMutex(&mutexes[1]);
  }

  // Takes both mutexes, this one first.
  std::function<void()> taker(int first) {
    return [this, first] {
      ExAcquireFastMutex(&mutexes[first]);
      ExAcquireFastMutex(&mutexes[1 - first]);
      ExReleaseFastMutex(&mutexes[1 - first]);
      ExReleaseFastMutex(&mutexes[first]);
    };
  }

  FAST_MUTEX mutexes[2];
};

}  // namespace

TEST(Schedules, ThreadsRunInTheOrderThatIsChosen) {
  std::string text;
  tList({0, 1, 0, 1, 1, 0, 1, 0}).run({writer(text, 'a'), writer(text, 'b')});
  EXPECT_EQ(text, "ababba");
}

TEST(Schedules, AThreadRunsOnWhileItIsChosen) {
  std::string text;
  EXPECT_EQ(tList({}).run({writer(text, 'a'), writer(text, 'b')}), 8u);
  EXPECT_EQ(text, "aaabbb");
}

TEST(Schedules, WhoHasEndedIsNoChoice) {
  std::string text;
  tList list({});
  list.run({writer(text, 'a'), writer(text, 'b')});
  EXPECT_EQ(list.points[0].choices, 3u);
  EXPECT_EQ(list.points[0].current, kMostScheduledThreads);
  EXPECT_EQ(list.points[3].choices, 3u);
  EXPECT_EQ(list.points[4].choices, 2u);
  EXPECT_FALSE(list.points[4].mayStay);
}

TEST(Schedules, CallsOfTheExecutiveArePoints) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  EXPECT_EQ(tList({}).run({[&] { KeClearEvent(&event); }, [&] { KeClearEvent(&event); }}), 4u);
}

TEST(Schedules, WhoWaitsIsNoChoiceUntilTheEventIsSet) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  std::string text;
  tList({}).run({[&] {
                   waitForever(&event);
                   text += "behind";
                 },
                 [&] {
                   text += "before ";
                   KeSetEvent(&event, 0, 0);
                 }});
  EXPECT_EQ(text, "before behind");
}

TEST(Schedules, AWaitRunsOutWhenNobodyCanGoOnAndTimeHasPassed) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  i64 const before = KeQueryPerformanceCounter(nullptr).QuadPart;
  NTSTATUS status = STATUS_SUCCESS;
  tList({}).run({[&] { status = waitFor(&event, inMilliseconds(3'600'000)); }});
  EXPECT_EQ(status, STATUS_TIMEOUT);
  EXPECT_GE(KeQueryPerformanceCounter(nullptr).QuadPart - before, 3'600 * i64{10'000'000});
}

TEST(Schedules, OfTwoWaitsTheShorterRunsOutFirst) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  std::string text;
  auto const waiter = [&](i64 seconds, char letter) {
    return [&, seconds, letter] {
      waitFor(&event, inMilliseconds(seconds * 1'000));
      text += letter;
    };
  };
  tList({}).run({waiter(20, 'a'), waiter(10, 'b')});
  EXPECT_EQ(text, "ba");
}

TEST(Schedules, AWaitMayRunOutWhileOthersGoOn) {
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  NTSTATUS status = STATUS_SUCCESS;
  tList list({0, 0, 1, kMostScheduledThreads});
  list.run({[&] { status = waitFor(&event, inMilliseconds(1'000)); },
            [&] {
              ntoshost::schedulePoint();
              KeSetEvent(&event, 0, 0);
            }});
  EXPECT_EQ(status, STATUS_TIMEOUT);
}

TEST(Schedules, WhoRepeatsItselfLetsOthersMakeAStep) {
  std::atomic<bool> isSet = false;
  int turns = 0;
  tList({}).run({[&] {
                   while (!isSet) {
                     ntoshost::scheduleYield();
                     ++turns;
                   }
                 },
                 [&] {
                   ntoshost::schedulePoint();
                   isSet = true;
                 }});
  EXPECT_EQ(turns, 1);
}

TEST(Schedules, OutsideOfOneThereAreNoPoints) {
  ntoshost::schedulePoint();
  ntoshost::scheduleYield();
}

TEST_F(SchedulesDeathTest, AGoodOrderOfMutexesEnds) {
  tList({0, 0, 0}).run({taker(0), taker(1)});
}

TEST_F(SchedulesDeathTest, ADeadlockStopsTheProgram) {
  EXPECT_DEATH(
      {
        tList({0, 0, 1, 1}).run({taker(0), taker(1)});
      },
      "ntos: The schedule ends in a deadlock; threads that have not ended: 0 1\\.");
}

TEST_F(SchedulesDeathTest, ALoopWithoutEndStopsTheProgram) {
  EXPECT_DEATH(tList({}).run({[] {
    for (;;) ntoshost::scheduleYield();
  }}),
               "ntos: The schedule does not end; threads that have not ended: 0\\.");
}

TEST_F(SchedulesDeathTest, AChoiceThatIsNoneStopsTheProgram) {
  EXPECT_DEATH(tList({3}).run({[] {}}), "ntos: The chooser of a schedule chose 3\\.");
}

TEST_F(SchedulesDeathTest, FiveThreadsAreTooMany) {
  EXPECT_DEATH(tList({}).run({[] {}, [] {}, [] {}, [] {}, [] {}}),
               "ntos: 5 threads were scheduled\\.");
}
