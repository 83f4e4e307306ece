#pragma once

#include "ntos/irql.h"

namespace ntoshost {

// The documented name of a level, or "device level".
char const* irqlName(KIRQL level);

// Stops the program unless the calling thread is at `highest` or below. `call` names the caller's
// kernel call. The plain executive does not look.
void requireIrqlAtMost(KIRQL highest, char const* call);

}  // namespace ntoshost
