#pragma once

#include "ntos/types.h"

namespace ntoshost {

// What stands for the calling thread in the owner fields of the locks: an address that nothing is
// at, and that no later thread gets again.
KTHREAD* currentThread();

// Whether it gets no APCs at all, whatever KeAreAllApcsDisabled says.
bool areAllApcsDisabled();

}  // namespace ntoshost
