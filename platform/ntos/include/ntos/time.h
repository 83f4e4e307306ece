#pragma once

#include "ntos/systemTimeAccess.h"
#include "ntos/types.h"

// void KeQuerySystemTime(LARGE_INTEGER* time);
//     Stores the time since 1 January 1601, 00:00 UTC, in units of 100 ns. It moves on at every
//     tick of the system clock, 1 to 16 ms apart, and jumps when the clock is set. Any IRQL.

extern "C" {

// The performance counter: monotonic, its ticks a second in `frequency` unless that is null.
// Any IRQL.
NTOS_IMPORT LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency);
}
