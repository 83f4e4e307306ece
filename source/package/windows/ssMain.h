#pragma once

// The module main, called by the platform layer at the turns of the module's life.

#include "vexk/moduleInfo.h"

namespace nOXDIAG100 {

// kModuleLoad creates the status heap if it does not exist yet, kModuleUnload destroys it, every
// other reason does nothing. Returns 0, or the negative status of a failed creation.
i32 ssMain(u32 reason);

}  // namespace nOXDIAG100
