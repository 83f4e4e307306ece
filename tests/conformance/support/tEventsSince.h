#pragma once

// The events of the platform's log from now on.

#include "vexk/eventLog.h"

class tEventsSince {
 public:
  tEventsSince() {
    tVexEvent event;
    while (vexReadEvent(first, event)) first = event.number + 1;
  }

  // How many of them begin with this text.
  int count(char const* beginning) const {
    tVexEvent event;
    int found = 0;
    for (u64 next = first; vexReadEvent(next, event); next = event.number + 1) {
      if (__builtin_memcmp(event.text, beginning, __builtin_strlen(beginning)) == 0) ++found;
    }
    return found;
  }

 private:
  u64 first = 1;
};
