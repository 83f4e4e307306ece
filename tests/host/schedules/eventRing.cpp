// The event log, in orders in which a writer and a reader are held up.

#include "schedules/tExplorer.h"
#include "vexk/eventLog.h"

namespace {

// One thread reads, or logs one event; another logs as many as are kept, so that it comes to the
// place of the one that the first is at.
template <bool isReader>
class tFullTurn {
 public:
  static constexpr unsigned kThreads = 2;

  tFullTurn() : levelBefore(vexPrintEvents(kVexEventNever)) {
    tVexEvent event;
    while (vexReadEvent(next, event)) next = event.number + 1;
    log('a');
  }
  ~tFullTurn() { vexPrintEvents(levelBefore); }

  void run(unsigned thread) {
    if (thread == 0) {
      if (isReader) {
        lookFrom(next);
      } else {
        log('b');
      }
    } else {
      for (u32 count = 0; count < kVexEventCount; ++count) log('c');
    }
  }
  void finish() {
    while (next != 0) next = lookFrom(next);
  }

 private:
  static void log(char letter) { _vexLogEvent("", "", 0, "%c%c%c", letter, letter, letter); }

  // The event is one that was logged. Returns the number behind it, or 0 when there is none.
  static u64 lookFrom(u64 number) {
    tVexEvent event;
    if (!vexReadEvent(number, event)) return 0;
    EXPECT_GE(event.number, number);
    char const letter = event.text[1];
    char const wanted[] = {' ', letter, letter, letter, '\0'};
    EXPECT_STREQ(event.text, wanted) << event.number;
    EXPECT_TRUE(letter >= 'a' && letter <= 'c');
    return event.number + 1;
  }

  u32 const levelBefore;
  u64 next = 1;
};

}  // namespace

TEST(EventLogSchedules, WhatIsReadIsWhole) {
  explore<tFullTurn<true>>("eventRead", {1, 100});
}

TEST(EventLogSchedules, OfTwoWritersInAPlaceOneGivesWay) {
  explore<tFullTurn<false>>("eventWritten", {1, 100});
}
