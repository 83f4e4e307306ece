#pragma once

#include <string>

#include "vexk/eventLog.h"

// What the event log has said since the object was built.
class tNewEvents {
 public:
  tNewEvents() {
    tVexEvent event;
    while (vexReadEvent(next, event)) next = event.number + 1;
  }

  std::string read() const {
    std::string all;
    tVexEvent event;
    for (u64 number = next; vexReadEvent(number, event); number = event.number + 1) {
      all += event.text;
      all += "\n";
    }
    return all;
  }

 private:
  u64 next = 1;
};
