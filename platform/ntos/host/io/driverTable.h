#pragma once

#include "ntos/driver.h"

namespace ntoshost {

// A driver object with its name; null when memory is exhausted. `name` has up to 63 letters and
// digits.
DRIVER_OBJECT* makeDriver(char const* name);

// The end of a driver that has no devices.
void destroyDriver(DRIVER_OBJECT* driver, char const* call);

// What DriverEntry gets beside the driver.
UNICODE_STRING* registryPathOf(DRIVER_OBJECT* driver);

// Whether the driver was stopped, and its unloading has begun. Under the devices' lock.
struct DriverEnd {
  bool isStopped;
  bool isUnloading;
};
DriverEnd& endOf(DRIVER_OBJECT* driver);

// The first driver for which `isWanted`; null when there is none. Under the devices' lock.
DRIVER_OBJECT* findDriver(bool (*isWanted)(DRIVER_OBJECT* driver));

u64 countDrivers();
void visitDrivers(void (*visit)(DRIVER_OBJECT* driver));

}  // namespace ntoshost
