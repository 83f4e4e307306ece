// The lock of all trace streams while its owner does not come out: who waits gives up in time, and
// no sooner, and only for that owner.

#include "ntos/time.h"
#include "oxdiagk/tDestinationSlot.h"
#include "schedules/tSaidOrder.h"
#include "support/recordingDestination.h"
#include "trace/newEvents.h"
#include "trace/startedModules.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tDestinationSlot;
using nOXDIAG100::tStreamLock;
using nOXDIAG100::tTextsOnTheWay;

constexpr u32 kOwner = 0;
constexpr u32 kWaiter = 1;
constexpr u32 kClock = 2;
constexpr u32 kNobody = 0xFFFFFFF1;
constexpr u32 kTicks = 150;               // of a tenth of a second, as each wait for the lock
constexpr u32 kMoreThanTenSeconds = 110;  // of those waits

void tick() {
  for (u32 count = 0; count < kTicks; ++count) ntoshost::schedulePoint();
}

u64 getMilliseconds() {
  LARGE_INTEGER countsPerSecond;
  u64 const count = static_cast<u64>(KeQueryPerformanceCounter(&countsPerSecond).QuadPart);
  return count * 1'000 / static_cast<u64>(countsPerSecond.QuadPart);
}

// Texts that do not come out, until the object goes.
class tStuckTexts {
 public:
  ~tStuckTexts() {
    for (u32 const place : places) tTextsOnTheWay::leave(place);
  }

  void add(u32 thread) { places.push_back(tTextsOnTheWay::enter(thread, slot)); }
  void addFree() { tTextsOnTheWay::leave(tTextsOnTheWay::enter(kNobody, slot)); }

 private:
  tRecordingDestination destination;
  iTraceDestination* current = &destination;
  tDestinationSlot slot{current};
  std::vector<u32> places;
};

// The clock ticks, and the wait for the lock runs out each time.
u32 passTime(ntoshost::SchedulePoint const& point) {
  if (mayRun(point, expiryOf(kWaiter))) return expiryOf(kWaiter);
  return mayRun(point, kWaiter) ? kWaiter : kClock;
}

}  // namespace

TEST(StreamLockSchedules, AnOwnerThatIsStuckInAPutIsGivenUpAfterTenSeconds) {
  tNewEvents const events;
  tStuckTexts stuck;
  bool isStuck = false;
  bool isGivenUp = false;
  u64 waited = 0;
  runInOrder({[&] {
                ASSERT_TRUE(tStreamLock::acquire());
                ASSERT_TRUE(tStreamLock::acquire());
                tStreamLock::release();
                stuck.add(tThreadUtility::getCurrentThreadId());
                isStuck = true;
                while (!isGivenUp) ntoshost::schedulePoint();
                tStreamLock::release();
              },
              [&] {
                u64 const start = getMilliseconds();
                isGivenUp = !tStreamLock::acquire();
                waited = getMilliseconds() - start;
                EXPECT_TRUE(isGivenUp);
                isGivenUp = true;
              },
              tick},
             [&](ntoshost::SchedulePoint const& point) -> u32 {
               if (!isStuck) return kOwner;
               return passTime(point);
             });
  EXPECT_GE(waited, 10'000u);
  EXPECT_LT(waited, 11'000u);
  EXPECT_NE(events.read().find("the trace is not configured"), std::string::npos) << events.read();
}

// Whoever has just taken the lock, and is not known yet, is not taken for who had it before.
TEST(StreamLockSchedules, AnOwnerThatIsNotKnownYetIsWaitedFor) {
  for (u32 ownerSteps = 1; ownerSteps < 12; ++ownerSteps) {
    tStuckTexts stuck;
    bool isReady = false;
    bool isTaken[2] = {};
    u32 left = ownerSteps;
    u32 expiries = 0;
    runInOrder({[&] {
                  isTaken[0] = tStreamLock::acquire();
                  if (isTaken[0]) tStreamLock::release();
                },
                [&] {
                  ASSERT_TRUE(tStreamLock::acquire());
                  tStreamLock::release();
                  stuck.add(tThreadUtility::getCurrentThreadId());
                  stuck.add(1);
                  stuck.addFree();
                  isReady = true;
                  ntoshost::schedulePoint();
                  isTaken[1] = tStreamLock::acquire();
                  if (isTaken[1]) tStreamLock::release();
                },
                tick},
               [&](ntoshost::SchedulePoint const& point) -> u32 {
                 if (!isReady) return kWaiter;
                 if (left != 0) {
                   --left;
                   return kOwner;
                 }
                 if (mayRun(point, expiryOf(kWaiter))) ++expiries;
                 return expiries > kMoreThanTenSeconds ? kOwner : passTime(point);
               });
    EXPECT_TRUE(isTaken[0] && isTaken[1]) << ownerSteps;
  }
}
