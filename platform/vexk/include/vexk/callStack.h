#pragma once

// Who called.

#include "compiler/types.h"
#include "vexk/api.h"

// Writes the return addresses of the calling thread's stack to `addresses`, innermost first, and
// returns how many were found, at most `count`. The entries behind the last frame are set to 0, so
// all `count` entries are written.
//
// With `skip` 0 the first entry is an address inside the function that called _vexGetCallStack
// (where the call returns to), the second one inside its caller, and so on; each unit of `skip`
// leaves out one more of the innermost. A stack that is not as deep as `skip` gives no frames.
// Frames further out than kCallStackMaximum are not looked at, however large `count` is.
//
//     u64 addresses[10];
//     u32 const found = _vexGetCallStack(10, 0, addresses);
//
// A null `addresses` finds nothing. Allocates nothing and takes no lock: any thread, any IRQL at
// which the code and stack walked through are resident.
VEX_API u32 _vexGetCallStack(u32 count, u32 skip, u64* addresses);

constexpr u32 kCallStackMaximum = 61;
