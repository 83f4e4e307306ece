#pragma once

// Start and stop of the library as a module.
//
// On Windows nobody calls these: the kernel calls DllInitialize when the first driver that imports
// oxdiagk.dll is loaded and DllUnload when the last one is gone, which do the same. A host program
// is its own kernel and calls them itself, after vexk and qelmk are up:
//
//     vexkInitialize();
//     qelmkInitialize();
//     if (oxdiagkInitialize(nullptr) == STATUS_SUCCESS) {
//       ... use the library ...
//       oxdiagkUnload();
//     }
//     qelmkUnload();
//     vexkUnload();
//
// Starts are counted: a second one changes nothing but the count, and the last unload stops the
// library. After it, and after a start that failed, the library is as if it had never been started,
// and can be started again. Both functions run at PASSIVE_LEVEL; they are not locked against each
// other, nor against the library's other operations.
//
// Before the first start, after a start that failed and after the last unload every operation of
// the library may be called, on any thread. Those of the trace stream and of the assertion
// configuration do nothing, an inquiry of theirs gives an empty text, no contract is checked, the
// front door issues no handles, and statuses have no detail. Destinations work, for they need no
// more than the kernel; an instance that getInstance makes then is kept until destroyInstance or
// the next unload.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "vexk/kernelTypes.h"

// Builds the library's global objects in their order, registers the module with the platform layer,
// which makes the process-wide status heap, and opens the configuration tunnel. `registryPath` is
// the service key of the module, kept in its record and cut at 260 characters; null is allowed and
// counts as empty. Returns STATUS_SUCCESS, or STATUS_DRIVER_UNABLE_TO_LOAD (0xC000026C) with
// nothing left constructed when the platform layer is not running or older than 2.0, the object
// framework is not running, memory is exhausted, or another module has one of its class names. Why
// is in the platform's event log, unless it is the platform layer itself.
OXDIAG_API i32 oxdiagkInitialize(_UNICODE_STRING const* registryPath);

// Undoes one start; the last one closes the tunnel and waits for the requests in it, destroys the
// status heap and then the global objects in reverse order of construction. Every status with
// detail must be gone by then, and no thread may be within an operation of the library. Should one
// be within the put of the trace destination all the same, it is waited for for ten seconds; then
// the event log names it, and that destination is left as it is. Without a start it does nothing.
// Always returns STATUS_SUCCESS.
OXDIAG_API i32 oxdiagkUnload();
