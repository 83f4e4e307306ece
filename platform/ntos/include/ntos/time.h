#pragma once

#include "ntos/types.h"

extern "C" {

// The performance counter: monotonic, its ticks a second in `frequency` unless that is null.
// Any IRQL.
NTOS_IMPORT LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency);
}
