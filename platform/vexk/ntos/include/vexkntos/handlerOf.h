#pragma once

#include "ntos/device.h"
#include "vexk/iDeviceHandler.h"

// What stands behind a device object of the family.
inline iDeviceHandler& vexHandlerOf(DEVICE_OBJECT const& device) {
  return *static_cast<tDeviceExtension*>(device.DeviceExtension)->handler;
}
