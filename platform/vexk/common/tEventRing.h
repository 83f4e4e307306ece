#pragma once

// The last events, in memory that is always there.

#include "vexk/eventLog.h"

// Writers and readers meet in single words and bytes and never wait: a reader sees by the number of
// a place that it is written anew, and looks further. A writer that finds another one in its place,
// because kVexEventCount events have come during that one's, lets its own event go.
class tEventRing {
 public:
  constexpr tEventRing() = default;

  void add(u32 level, i64 time, char const* text);

  // As vexReadEvent.
  bool read(u64 leastNumber, tVexEvent& event) const;

 private:
  struct tPlace {
    u64 number;  // of the event; 0 while there is none and while it is written
    i64 time;
    u32 level;
    u32 isWritten;  // 1 while a writer is in the place
    char text[kVexEventTextSize];
  };

  static void replace(tPlace& place, u64 number, u32 level, i64 time, char const* text);
  static void writeText(tPlace& place, char const* text);
  bool copy(u64 number, tVexEvent& event) const;

  u64 lastNumber = 0;
  tPlace places[kVexEventCount] = {};
};

extern tEventRing vexEventRing;
