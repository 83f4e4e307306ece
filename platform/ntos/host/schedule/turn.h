#pragma once

#include "ntos/types.h"

namespace ntoshost {

// A word by which one thread lets another go on.
void giveTurn(u32& turn);
void awaitTurn(u32& turn);

}  // namespace ntoshost
