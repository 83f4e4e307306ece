#pragma once

// The platform's own device in a stack: what a driver's AddDevice puts on top of a physical device.
// Its requests are served by the calls of "vexk/dispatch.h", its behaviour is a component's.
//
//     NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physicalDevice) {
//       auto* const component = new tRackBus;
//       if (component == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
//       tFunctionDeviceDescription const description = {
//           driver, physicalDevice, FILE_DEVICE_BUS_EXTENDER, kRackBusType, 0};
//       NTSTATUS const status = vexAddFunctionDevice(description, *component);
//       if (!NT_SUCCESS(status)) component->release();
//       return status;
//     }

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/iDeviceComponent.h"
#include "vexk/kernelTypes.h"
#include "vexk/tModuleGUID.h"

struct tFunctionDeviceDescription {
  _DRIVER_OBJECT* driver;
  _DEVICE_OBJECT* physicalDevice;
  u32 deviceType;       // the kernel's FILE_DEVICE_
  tModuleGUID busType;  // of a device that is a bus; its children tell both
  u32 legacyBusNumber;
};

// Makes an unnamed device and puts it on top of the physical device's stack. It deletes itself when
// it is removed, and calls component.release() then. On failure nothing is left, the component has
// not been called and stays the caller's:
//   STATUS_INSUFFICIENT_RESOURCES  no memory for the device
//   STATUS_NO_SUCH_DEVICE          the physical device's stack takes no more devices
// PASSIVE_LEVEL.
[[nodiscard]] VEX_API i32 vexAddFunctionDevice(tFunctionDeviceDescription const& description,
                                               iDeviceComponent& component);
