#pragma once

#include "ntos/types.h"

// Tries to open the device over which programs send requests, and says so when it does not answer
// with `wanted`: STATUS_SUCCESS while its driver is loaded, STATUS_OBJECT_NAME_NOT_FOUND otherwise.
// Returns STATUS_SUCCESS, or STATUS_DRIVER_UNABLE_TO_LOAD. PASSIVE_LEVEL.
NTSTATUS demandDevice(NTSTATUS wanted);
