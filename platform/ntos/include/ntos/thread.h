#pragma once

#include "ntos/types.h"

extern "C" {

// The id of the calling thread, as a number in a pointer. Any IRQL.
NTOS_IMPORT HANDLE PsGetCurrentThreadId();

// The process in whose address space the caller runs: a system call's process inside that call.
// Any IRQL.
NTOS_IMPORT EPROCESS* PsGetCurrentProcess();
NTOS_IMPORT HANDLE PsGetCurrentProcessId();
}
