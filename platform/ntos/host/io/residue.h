#pragma once

#include "ntos/driver.h"

namespace ntoshost {

// After DriverUnload: stops the program when a thread owns a mutex that it took in this driver, or
// when a request of the driver's was not freed; tells what it has left in the pool.
void requireNoResidue(DRIVER_OBJECT* driver);

}  // namespace ntoshost
