#pragma once

#include "ntos/types.h"

extern "C" {

NTOS_IMPORT HANDLE PsGetCurrentThreadId();

// Nothing of the kernel's is delivered to a program's thread, so there is nothing to hold off.
inline void KeEnterCriticalRegion() {
}

inline void KeLeaveCriticalRegion() {
}
}
