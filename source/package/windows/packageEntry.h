#pragma once

// The module's load, its entry that the platform layer calls with a reason code, and its unload.

#include "ntos/types.h"

namespace nOXDIAG100 {

// What DllInitialize does: checks the platform layer, builds the globals and registers the module,
// under this service key. Returns STATUS_SUCCESS, or STATUS_DRIVER_UNABLE_TO_LOAD with nothing
// built; the image builds nothing after that until forgetModule().
NTSTATUS loadModule(UNICODE_STRING const* registryPath);

// What DllUnload does; always returns STATUS_SUCCESS.
NTSTATUS unloadModule();

// Makes the module as if its image were mapped anew, unless there is something built in it.
void forgetModule();

// kModuleLoad counts the globals once more and runs ssMain, uncounting them if that fails;
// kModuleUnload runs ssMain and uncounts. Every reason returns the status of ssMain.
i32 moduleEntry(u32 reason);

}  // namespace nOXDIAG100
