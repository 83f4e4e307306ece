#pragma once

#include "ntos/types.h"

namespace ntoshost {

// Makes PsGetCurrentThreadId answer `id` in the calling thread; 0 means the real id again. Locks
// still tell threads apart by what they are.
void overrideCurrentThreadId(u64 id);

}  // namespace ntoshost
