#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// The status heap's part in the turns of the module's life. Phase 0 creates the pool if there is
// none, phase 1 destroys it, every other phase does nothing. PASSIVE_LEVEL, in the loading thread.
//
// Returns 0, or a negative status of phase 0, which then leaves nothing behind: no memory for the
// control record, or the lock could not be opened. Without memory for the pool itself there is a
// pool, but every allocation from it fails.
i32 statusHeapMain(u32 phase);

}  // namespace nOXDIAG100
