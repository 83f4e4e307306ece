#pragma once

#include "ntos/driver.h"
#include "vexk/iDeviceHandler.h"
#include "wine/rackService.h"

// The loaded driver of the service, with a reference that is the caller's to give back; null if it
// is not loaded. PASSIVE_LEVEL.
DRIVER_OBJECT* findRackDriver(tRackService const& service);

// The bus among the driver's devices; null if it has none.
DEVICE_OBJECT* findRackBus(DRIVER_OBJECT const& driver);
