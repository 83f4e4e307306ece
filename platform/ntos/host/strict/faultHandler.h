#pragma once

#include "ntos/types.h"

namespace ntoshost {

// From here on a memory fault is looked at first by the executive: at the end of a kernel stack it
// is a broken rule. All others go to whoever served them before.
void installFaultHandler();

// Stops the program when the address lies below the kernel stack that the calling thread is on.
void requireNoStackOverflow(u64 address);

}  // namespace ntoshost
