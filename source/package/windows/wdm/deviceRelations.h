#pragma once

// Lists of devices that answer IRP_MN_QUERY_DEVICE_RELATIONS. IRQL <= APC_LEVEL.

#include "ntos/pnp.h"

namespace nOXDIAG100 {

// An empty list with room for `capacity` devices; null when memory is exhausted.
DEVICE_RELATIONS* makeRelations(size_t capacity);

// Adds a device, with a reference of its own. There is room.
void appendRelation(DEVICE_RELATIONS& relations, DEVICE_OBJECT& device);

// Moves the devices of `from`, which may be null and is given back, with their references.
void moveRelations(DEVICE_RELATIONS& relations, DEVICE_RELATIONS* from);

}  // namespace nOXDIAG100
