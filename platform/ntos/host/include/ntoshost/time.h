#pragma once

#include "ntos/types.h"

// Time that passes faster or jumps, for tests of what happens after a long wait.

namespace ntoshost {

// From now on the performance counter runs `rate` times as fast as time does, and a wait for a span
// ends as much earlier; `rate` is 1, as at the start, for true time, or more. The counter never
// goes back. Points of time since 1601, and waits for them, stay what they are. To be called while
// no thread waits.
void setTimeRate(u32 rate);
u32 getTimeRate();

// From now on the counter alone runs so, while waits last as long as before: 0 stands still, a
// negative rate runs backwards, as no kernel's does. setTimeRate ends it.
void setCounterRate(i32 rate);

// Moves the performance counter on by so many counts, or back when they are negative, as no kernel
// does. Waits keep the span that they began with.
void moveTime(i64 counts);

}  // namespace ntoshost
