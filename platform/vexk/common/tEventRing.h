#pragma once

// The last events, in memory that is always there.

#include "vexk/eventLog.h"

// Writers and readers meet in single words and bytes and never wait: a reader sees by the number of
// a place that it was written anew, and looks further. Two writers come to the same place at once
// only if kVexEventCount events happen during one; then the texts may mix, terminated all the same.
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
    char text[kVexEventTextSize];
  };

  void write(tPlace& place, u32 level, i64 time, char const* text);
  bool copy(u64 number, tVexEvent& event) const;

  u64 lastNumber = 0;
  tPlace places[kVexEventCount] = {};
};

extern tEventRing vexEventRing;
