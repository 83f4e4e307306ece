#pragma once

#include "ntos/removeLock.h"

namespace ntoshost {

// Forgets the remove locks that lie in these bytes; returns one that is held, or null.
void const* forgetRemoveLocks(void const* bytes, size_t size);

}  // namespace ntoshost
