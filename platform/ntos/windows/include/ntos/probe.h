#pragma once

#include "ntos/types.h"

// Checks of user-mode addresses. Only a real kernel has these: the host executive copies through
// ntoshost/userMemory.h instead.

extern "C" {

// Raises a structured exception unless the `length` bytes at `address` are user memory, aligned to
// `alignment` (1, 2, 4, 8). Call inside __try, IRQL <= APC_LEVEL. ProbeForWrite also touches every
// page. The memory can go away right after, so the access itself belongs inside __try as well, in a
// function of its own that is not inlined.
NTOS_IMPORT void ProbeForRead(void const volatile* address, size_t length, u32 alignment);
NTOS_IMPORT void ProbeForWrite(void volatile* address, size_t length, u32 alignment);
}
