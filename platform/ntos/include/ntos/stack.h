#pragma once

#include "ntos/types.h"

extern "C" {

// Fills `addresses` with return addresses of the calling thread's stack, innermost first. With
// `skip` 0 the first one is in the function that makes this call. Returns how many were found, at
// most `count`; the rest of `addresses` is untouched. `hash`, unless null, gets the low 32 bits of
// the sum of the addresses found.
// `skip` + `count` stay below 63 for old kernels. Any IRQL at which the stack may be read.
NTOS_IMPORT u16 RtlCaptureStackBackTrace(u32 skip, u32 count, void** addresses, u32* hash);
}
