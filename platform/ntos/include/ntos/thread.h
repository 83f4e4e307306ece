#pragma once

#include "ntos/types.h"

extern "C" {

// The process in whose address space the caller runs: a system call's process inside that call.
// Any IRQL.
NTOS_IMPORT EPROCESS* PsGetCurrentProcess();
NTOS_IMPORT HANDLE PsGetCurrentProcessId();

// The number of the processor that the caller runs on, counted over all groups. `number`: null.
// Below DISPATCH_LEVEL the thread may be on another processor the next moment. Any IRQL.
NTOS_IMPORT u32 KeGetCurrentProcessorNumberEx(struct _PROCESSOR_NUMBER* number);

// Between the two the thread gets no APCs at all, so that no input or output of its own completes.
// They nest and are balanced as critical regions are. IRQL <= APC_LEVEL.
NTOS_IMPORT void KeEnterGuardedRegion();
NTOS_IMPORT void KeLeaveGuardedRegion();

// Whether the calling thread gets no normal kernel APCs: it is in a critical or guarded region, or
// owns a kernel mutex. The IRQL is of no account. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT BOOLEAN KeAreApcsDisabled();

// Whether it gets no APCs at all: it is in a guarded region, or the IRQL is APC_LEVEL or above.
// IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT BOOLEAN KeAreAllApcsDisabled();
}

// HANDLE PsGetCurrentThreadId();
//     The id of the calling thread, as a number in a pointer; 0 for each of the threads that the
//     processors idle in, upon which interrupts come. Any IRQL.
//
// void KeEnterCriticalRegion();
// void KeLeaveCriticalRegion();
//     Between the two the thread gets no normal kernel APCs: nobody suspends or ends it there.
//     Regions nest, and whoever enters one leaves it in the same thread: the kernel stops the
//     machine when a thread ends within one, or returns to its program. IRQL <= APC_LEVEL.
#include "ntos/threadAccess.h"
