#pragma once

#include "ntoshost/devices.h"

namespace ntoshost {

// A plug-and-play request with nothing but its minor code.
NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor);

// One that must not fail for want of memory.
NTSTATUS sendPnpSurely(DEVICE_OBJECT* device, u8 minor);

// Asks and gives what the driver answers with in memory: null when it answers with none or fails.
NTSTATUS ask(DEVICE_OBJECT* device, Request& request, void** answer);

// The relations with their references, to be given back one by one, and the block with freeAnswer.
NTSTATUS askRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type,
                      DEVICE_RELATIONS** relations);

constexpr char kRelationsAnswer[] = "device relations";

}  // namespace ntoshost
