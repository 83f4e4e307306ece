#pragma once

#include "ntos/types.h"

// Why a thread waits; shows in a debugger. Drivers say Executive.
enum KWAIT_REASON : i32 { Executive = 0 };

extern "C" {

// Waits until `object`, a KEVENT or a KMUTEX, is signalled, and takes it: a synchronization event
// is cleared, a mutex becomes the calling thread's (once more).
//
// `timeout`: null waits for ever; 0 only looks; below 0 is a span, above 0 a point of time since
// 1601, both in units of 100 ns. `mode` is KernelMode and `alertable` 0 for a wait that nothing
// from user mode ends.
// Returns STATUS_SUCCESS or STATUS_TIMEOUT (which is no error: compare, do not use NT_SUCCESS).
// IRQL <= APC_LEVEL; with a timeout of 0 also DISPATCH_LEVEL.
NTOS_IMPORT NTSTATUS KeWaitForSingleObject(void* object, KWAIT_REASON reason, KPROCESSOR_MODE mode,
                                           BOOLEAN alertable, LARGE_INTEGER* timeout);
}
