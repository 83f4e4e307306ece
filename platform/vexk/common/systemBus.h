#pragma once

#include "vexk/iBus.h"

// A new object for the I/O port space of the system: what busNewBusObject makes of kBusSystemIo
// when no factory is set. Every target brings its own. Null when memory is exhausted.
iBus* newSystemBus();
