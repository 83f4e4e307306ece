#pragma once

// The interval timer of the PC. It counts by a clock of its own, not by the platform's time base.

#include "ntos/types.h"

constexpr u32 kTimerTicksPerSecond = 1'193'182;

// Calls `action` once, from an interrupt, when `microseconds` (at most 54,000) have passed.
void afterMicroseconds(u32 microseconds, void (*action)());

// Counts timer ticks from its construction on, up to 65,535 of them (54 ms).
class tTickCount {
 public:
  tTickCount();
  u32 get() const;
};
