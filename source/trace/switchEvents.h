#pragma once

// What the trace streams write into the platform's event log: waits that were given up. Any IRQL.

#include "ntos/types.h"

namespace nOXDIAG100 {

// That a destination stays as it is, because `thread` is within its put.
void logGivenUpSwitch(u32 thread);

// The same, because `thread` does not end its line; 0 when it is not known who.
void logGivenUpSwitchBesideLine(u32 thread);

// enableMutex or disableMutex has changed nothing.
void logGivenUpMutex(u32 thread);

// That a destination that is destroyed was taken off its streams though `thread` is within its put.
void logForcedLeave(u32 thread);

// That nothing was configured, because `thread` configures and is within a put.
void logGivenUpConfiguration(u32 thread);

// That a stream, or the module, ends and leaves a destination open, because `thread` is within its
// put.
void logGivenUpEnd(u32 thread);

}  // namespace nOXDIAG100
