#pragma once

// The module main, called by the platform layer at the turns of the module's life.

#include "ntos/types.h"

namespace nOXDIAG100 {

constexpr u32 kReasonLoad = 0;
constexpr u32 kReasonUnload = 1;

// kReasonLoad creates the status heap if it does not exist yet, kReasonUnload destroys it, every
// other reason does nothing. Returns 0, or the negative status of a failed creation.
i32 ssMain(u32 reason);

}  // namespace nOXDIAG100
