// Lines, switches of destinations and ends of destinations, in every order.

#include <algorithm>
#include <memory>

#include "oxdiagk/tVEXTraceDestination.h"
#include "schedules/tExplorer.h"
#include "schedules/tWatchedDestination.h"
#include "support/recordingDestination.h"
#include "trace/startedModules.h"

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

namespace {

// A stream at the first of two destinations.
class tTwoPlaces {
 public:
  // The stream goes before what it writes to.
  ~tTwoPlaces() { leave(); }
  tTwoPlaces() = default;
  tTwoPlaces(tTwoPlaces const&) = delete;
  tTwoPlaces& operator=(tTwoPlaces const&) = delete;

  void leave() { trace.setDestination(tVEXTraceDestination::getInstance()); }

  tWatchedFate fates[2];
  tWatchedDestination first{fates[0]};
  tWatchedDestination second{fates[1]};
  tPrivateTrace trace{first};
};

// Whoever is at a destination has it open, and nobody else.
void requireOpenWhereTheStreamIs(tTwoPlaces& places) {
  EXPECT_EQ(places.fates[0].within + places.fates[1].within, 0);
  bool const isSecond = places.trace.getDestination() == &places.second;
  EXPECT_TRUE(places.fates[isSecond ? 1 : 0].isOpen);
}

class tSwitchBesideALine {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(places.trace, "line");
  }
  void finish() {
    requireOpenWhereTheStreamIs(places);
    long const arrived = places.fates[0].count("line\n") + places.fates[1].count("line\n");
    EXPECT_LE(arrived, 1);
  }

 private:
  tTwoPlaces places;
};

// With the line mutex no line is lost.
class tSwitchBesideALockedLine {
 public:
  static constexpr unsigned kThreads = 2;

  tSwitchBesideALockedLine() { places.trace.enableMutex(); }
  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(places.trace, "line");
  }
  void finish() {
    requireOpenWhereTheStreamIs(places);
    EXPECT_EQ(places.fates[0].count("line\n") + places.fates[1].count("line\n"), 1);
    places.trace.disableMutex();
  }

 private:
  tTwoPlaces places;
};

// Two threads switch, one there and one back.
class tTwoSwitches {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    places.trace.setDestination(thread == 0 ? places.second : places.first);
  }
  void finish() { requireOpenWhereTheStreamIs(places); }

 private:
  tTwoPlaces places;
};

// The destination that is opened switches the stream back, while another thread writes.
class tNestedSwitch {
 public:
  static constexpr unsigned kThreads = 2;

  tNestedSwitch() {
    places.second.onOpen = [this] { places.trace.setDestination(places.first); };
  }
  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(places.trace, "line");
  }
  void finish() {
    requireOpenWhereTheStreamIs(places);
    places.second.onOpen = nullptr;
  }

 private:
  tTwoPlaces places;
};

// A put that switches its own stream changes nothing, and holds up nobody else's switch.
class tSwitchWithinPut {
 public:
  static constexpr unsigned kThreads = 2;

  tSwitchWithinPut() {
    places.first.onPut = [this] {
      EXPECT_EQ(places.trace.setDestination(places.second), places.trace.getDestination());
    };
  }
  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(places.trace, "line");
  }
  void finish() {
    requireOpenWhereTheStreamIs(places);
    places.first.onPut = nullptr;
  }

 private:
  tTwoPlaces places;
};

// A destination that is destroyed while a line is written.
class tEndBesideALine {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    if (thread == 0) mortal.reset();
    if (thread == 1) writeLine(trace, "line");
  }
  void finish() {
    EXPECT_TRUE(fate.isGone);
    EXPECT_FALSE(fate.isOpen);
    EXPECT_EQ(fate.within, 0);
    EXPECT_EQ(trace.getDestination(), &tVEXTraceDestination::getInstance());
  }

 private:
  tWatchedFate fate;
  std::unique_ptr<tWatchedDestination> mortal = std::make_unique<tWatchedDestination>(fate);
  tPrivateTrace trace{*mortal};
};

// Two streams at one destination; one leaves it while a line of the other is put.
class tSharedPlace {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(other, "line");
  }
  void finish() {
    EXPECT_TRUE(places.fates[0].isOpen);
    EXPECT_EQ(places.fates[0].count("line\n"), 1);  // the other stream stays where it is
    other.setDestination(tVEXTraceDestination::getInstance());
  }

 private:
  tTwoPlaces places;
  tPrivateTrace other{places.first};
};

// A destination that does not open: the former one stays.
class tFailedSwitch {
 public:
  static constexpr unsigned kThreads = 2;

  tFailedSwitch() {
    places.trace.enableMutex();
    places.second.mayOpen = false;
  }
  void run(unsigned thread) {
    if (thread == 0) places.trace.setDestination(places.second);
    if (thread == 1) writeLine(places.trace, "line");
  }
  void finish() {
    EXPECT_EQ(places.trace.getDestination(), &places.first);
    requireOpenWhereTheStreamIs(places);
    EXPECT_EQ(places.fates[0].count("line\n"), 1);
    places.trace.disableMutex();
  }

 private:
  tTwoPlaces places;
};

}  // namespace

TEST(SlotSchedules, NobodyPutsToAClosedDestination) {
  explore<tSwitchBesideALine>("slotSwitch", {1, 500});
}

TEST(SlotSchedules, ALineWithTheMutexArrivesOnce) {
  explore<tSwitchBesideALockedLine>("slotLocked", {1, 500});
}

TEST(SlotSchedules, SwitchesOfTwoThreadsComeOneAfterTheOther) {
  explore<tTwoSwitches>("slotTwoSwitches", {1, 500});
}

TEST(SlotSchedules, ADestinationMaySwitchBackWhileALineIsWritten) {
  explore<tNestedSwitch>("slotNested", {1, 500});
}

TEST(SlotSchedules, APutThatSwitchesChangesNothing) {
  explore<tSwitchWithinPut>("slotWithinPut", {1, 500});
}

TEST(SlotSchedules, ADestinationEndsBehindTheLastPut) {
  explore<tEndBesideALine>("slotEnd", {1, 500});
}

TEST(SlotSchedules, ASharedDestinationStaysOpenForTheOtherStream) {
  explore<tSharedPlace>("slotShared", {1, 500});
}

TEST(SlotSchedules, ASwitchThatFailsLosesNoLine) {
  explore<tFailedSwitch>("slotFailed", {1, 500});
}
