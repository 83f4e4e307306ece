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

#include "ntos/device.h"
#include "ntos/guid.h"
#include "vexk/api.h"
#include "vexk/iDeviceComponent.h"

struct tFunctionDeviceDescription {
  DRIVER_OBJECT* driver;
  DEVICE_OBJECT* physicalDevice;
  u32 deviceType;  // FILE_DEVICE_ of "ntos/io.h"
  GUID busType;    // of a device that is a bus; its children tell both
  u32 legacyBusNumber;
};

// Makes an unnamed device and puts it on top of the physical device's stack. It deletes itself when
// it is removed, and calls component.release() then. On failure nothing is left, the component has
// not been called and stays the caller's:
//   STATUS_INSUFFICIENT_RESOURCES  no memory for the device
//   STATUS_NO_SUCH_DEVICE          the physical device's stack takes no more devices
// PASSIVE_LEVEL.
VEX_API NTSTATUS vexAddFunctionDevice(tFunctionDeviceDescription const& description,
                                      iDeviceComponent& component);
