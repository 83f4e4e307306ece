#pragma once

// What the module writes into the platform's event log.

#include "ntos/types.h"

namespace nOXDIAG100 {

// A turn of the module's life, with its file name, build string and entry. Any IRQL.
void logLifeEvent(u32 reason);

// That the module's global objects could not be built. Any IRQL.
void logFailedGlobals(i32 status);

// That ssMain has failed. Any IRQL.
void logFailedMain(u32 reason, i32 status);

}  // namespace nOXDIAG100
