#pragma once

// The module entry that the platform layer calls with a reason code.

#include "ntos/types.h"

namespace nOXDIAG100 {

// kModuleLoad counts the globals once more and runs ssMain, uncounting them if that fails;
// kModuleUnload runs ssMain and uncounts. Every reason returns the status of ssMain.
i32 moduleEntry(u32 reason);

}  // namespace nOXDIAG100
