#pragma once

#include "ntos/irql.h"

namespace ntoshost {

// The documented name of a level, or "device level".
char const* irqlName(KIRQL level);

// Stops the program unless the calling thread is at `highest` or below. `call` names the caller's
// kernel call, which begins here: the thread may be suspended. The plain executive does not look.
void requireIrqlAtMost(KIRQL highest, char const* call);

// The same where the thread has a lock of the executive's own, and is not to be suspended.
void requireIrqlOnly(KIRQL highest, char const* call);

}  // namespace ntoshost
