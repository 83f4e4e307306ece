#pragma once

// Start and stop of the platform layer.
//
// On Windows the kernel calls DllInitialize and DllUnload of vexk.dll, which forward to here. A
// host program is its own kernel: it calls these first and last. Starts are counted; the layer runs
// until every start has met its stop. Both run at PASSIVE_LEVEL and are not locked against each
// other.
//
// Locks (sync.h), dispatchers (iLib.h) and the registration of modules (moduleInfo.h) need a start,
// and report kStatusNotInitialized without one. The rest works at once: memory, debugger print,
// event log, call stacks, versions, numbers, time, buses, devices, copies of user memory.

#include "compiler/types.h"
#include "vexk/api.h"

// Starts the layer. Returns STATUS_SUCCESS.
VEX_API i32 vexkInitialize();

// Stops the layer. Locks that are still open are reported by one debugger print and stay valid
// memory: their owners may still close them. A stop without start does nothing. Returns
// STATUS_SUCCESS.
VEX_API i32 vexkUnload();

// 1 while the layer runs, else 0. What stands above asks before it starts. Any IRQL.
VEX_API u32 pkgIsVexkInitialized();
