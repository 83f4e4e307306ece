#pragma once

#include "ntos/driver.h"
#include "slotbus/component/iRackSource.h"

namespace nSLOTBUS100 {

// The part of DriverEntry that program and driver share: registers with the library's device
// wrapper, and has `driver` serve its requests through it and make a bus of every device that it is
// given. The racks come from `source`, which outlives the devices. One driver an image.
// PASSIVE_LEVEL.
void becomeBusDriver(DRIVER_OBJECT& driver, iRackSource& source);

// Undoes it; the driver has no device any more. For DriverUnload.
void ceaseBusDriver();

}  // namespace nSLOTBUS100
