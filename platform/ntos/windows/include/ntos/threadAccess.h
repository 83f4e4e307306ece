#pragma once

#include "ntos/types.h"

extern "C" {
NTOS_IMPORT HANDLE PsGetCurrentThreadId();
NTOS_IMPORT void KeEnterCriticalRegion();
NTOS_IMPORT void KeLeaveCriticalRegion();
}
