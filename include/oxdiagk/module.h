#pragma once

// Start and stop of the library as a module.
//
// On Windows nobody calls these: the kernel calls DllInitialize when the first driver that imports
// oxdiagk.dll is loaded and DllUnload when the last one is gone, and they forward to here. A host
// program is its own kernel and calls them itself, after vexk and qelmk are up:
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
// Both run at PASSIVE_LEVEL in the thread that loads the module; they are not locked against each
// other. A module image is loaded once: after oxdiagkUnload the image must be loaded anew (by the
// kernel, or as a fresh process or shared library on the host) before it can serve again.

#include "ntos/types.h"
#include "oxdiagk/api.h"

// Builds the library's global objects in their order, registers the module with the platform layer,
// which makes the process-wide status heap, and opens the configuration tunnel. `registryPath` is
// the service key of the module, kept in its record and cut at 260 characters; null is allowed and
// counts as empty. Returns STATUS_SUCCESS, or STATUS_DRIVER_UNABLE_TO_LOAD (0xC000026C) with
// nothing left constructed when the platform layer is not running or older than 2.0, memory is
// exhausted, or another module has one of its class names. Why is in the platform's event log.
OXDIAG_API NTSTATUS oxdiagkInitialize(UNICODE_STRING const* registryPath);

// Closes the tunnel and waits for the requests in it, destroys the status heap and then the global
// objects in reverse order of construction. Every status with detail must be gone by then. Always
// returns STATUS_SUCCESS.
OXDIAG_API NTSTATUS oxdiagkUnload();
