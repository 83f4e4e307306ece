#pragma once

#include "ntos/types.h"

extern "C" {

// Stores the base of the image that has the code at `address` in it in `base`, and returns it; null
// for both when no image has it. Any IRQL.
NTOS_IMPORT void* RtlPcToFileHeader(void* address, void** base);

// Whether the page at `address` is in memory now; it may be gone at once unless something keeps it.
// IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT BOOLEAN MmIsAddressValid(void* address);
}
