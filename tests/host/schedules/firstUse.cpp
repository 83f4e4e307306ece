// What is made by the first who asks for it, of two threads that ask at once: the lock of all trace
// streams, the places of texts on their way, and an object as the destinations of the module are.
// Each order is run in a program of its own, in which nobody has asked yet.

// In front of what is compiled here.
#include "schedules/scheduledAtomics.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "oxdiagk/tDestinationSlot.h"
#include "schedules/tSaidOrder.h"
#include "support/recordingDestination.h"
#include "trace/findOrMake.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tDestinationSlot;
using nOXDIAG100::tStreamLock;
using nOXDIAG100::tTextsOnTheWay;

constexpr u32 kSteps = 25;     // more than one of the two makes
constexpr u32 kForGood = 999;  // to its end
constexpr u32 kFirstThread = 0x1001;
constexpr u32 kSecondThread = 0x1002;
constexpr u32 kLooker = 0x1003;

// What the work says in a program of its own, when the first thread makes so many steps, and then
// the second.
template <class Work>
bool isRightIn(Work isRight, u32 first, u32 second) {
  pid_t const child = fork();
  if (child == 0) _exit(isRight(first, second) ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The first thread stops at one of its first steps, and the second one then at one of its own.
template <class Work>
void requireInEachOrder(Work isRight, u32 mostOfFirst, u32 mostOfSecond) {
  for (u32 first = 0; first < mostOfFirst; ++first) {
    for (u32 second = 0; second < mostOfSecond; ++second) {
      ASSERT_TRUE(isRightIn(isRight, first, second)) << first << ", then " << second;
    }
  }
}

bool isOneAtATime(u32 first, u32 second) {
  int within = 0;
  int times = 0;
  bool isAlone = true;
  auto const use = [&] {
    if (!tStreamLock::acquire()) return;
    isAlone = isAlone && ++within == 1;
    ntoshost::schedulePoint();
    --within;
    ++times;
    tStreamLock::release();
  };
  runInOrder({use, use}, firstThenSecond(first, second));
  return isAlone && times == 2;
}

struct tPlaces {
  tRecordingDestination destination;
  iTraceDestination* current = &destination;
  tDestinationSlot slot{current};

  bool isFound(u32 thread, u32 besides) const {
    return tTextsOnTheWay::findOther(besides, destination, &slot) == thread;
  }
};

bool haveOwnPlaces(u32 first, u32 second) {
  tPlaces places;
  u32 one = 0;
  u32 other = 0;
  runInOrder({[&] { one = tTextsOnTheWay::enter(kFirstThread, places.slot); },
              [&] { other = tTextsOnTheWay::enter(kSecondThread, places.slot); }},
             firstThenSecond(first, second));
  return one != other && places.isFound(kFirstThread, kSecondThread) &&
         places.isFound(kSecondThread, kFirstThread);
}

// A text that is there, of a thread that is known, counts as one of its slot, before it has said
// that.
bool isFoundOnceItIsThere(u32 first, u32 second) {
  tPlaces places;
  bool isThere = false;
  bool isFound = false;
  u32 sender = 0;
  runInOrder({[&] {
                sender = tThreadUtility::getCurrentThreadId();
                places.slot.send("x", 1);
              },
              [&] {
                isThere = tTextsOnTheWay::isWithin(sender, nullptr);
                isFound = places.isFound(sender, kLooker);
              }},
             firstThenSecond(first, second));
  return isFound || !isThere || sender == 0;
}

struct tThing {
  tThing() {
    ++living;
    ntoshost::schedulePoint();
  }
  ~tThing() { --living; }

  static int living;
};

int tThing::living = 0;

bool isOneThing(u32 first, u32 second) {
  tThing* place = nullptr;
  tThing* found[2] = {};
  runInOrder({[&] { found[0] = nOXDIAG100::findOrMake(place); },
              [&] { found[1] = nOXDIAG100::findOrMake(place); }},
             firstThenSecond(first, second));
  return place != nullptr && found[0] == place && found[1] == place && tThing::living == 1;
}

}  // namespace

TEST(FirstUse, OfADestinationByTwoMakesOneThatBothTake) {
  requireInEachOrder(isOneThing, 6, 10);
}

TEST(FirstUse, OfTheStreamsLockByTwoIsOneAtATime) {
  requireInEachOrder(isOneAtATime, 6, kSteps);
}

TEST(FirstUse, OfPlacesForTextsByTwoGivesEachItsOwn) {
  requireInEachOrder(haveOwnPlaces, 6, 10);
}

TEST(FirstUse, OfAPlaceIsSeenByWhoLooksAtTheSlot) {
  for (u32 first = 0; first < kSteps; ++first) {
    EXPECT_TRUE(isRightIn(isFoundOnceItIsThere, first, kForGood)) << first;
  }
}
