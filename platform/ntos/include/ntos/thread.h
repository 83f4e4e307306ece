#pragma once

#include "ntos/types.h"

extern "C" {

// The id of the calling thread, as a number in a pointer. Any IRQL.
NTOS_IMPORT HANDLE PsGetCurrentThreadId();

// The process in whose address space the caller runs: a system call's process inside that call.
// Any IRQL.
NTOS_IMPORT EPROCESS* PsGetCurrentProcess();
NTOS_IMPORT HANDLE PsGetCurrentProcessId();

// Between the two the thread gets no normal kernel APCs: nobody suspends or ends it there. Regions
// nest, and whoever enters one leaves it in the same thread: the kernel stops the machine when a
// thread ends within one.
// IRQL <= APC_LEVEL.
NTOS_IMPORT void KeEnterCriticalRegion();
NTOS_IMPORT void KeLeaveCriticalRegion();
}
