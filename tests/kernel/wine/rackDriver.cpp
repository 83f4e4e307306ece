#include "wine/rackDriver.h"

#include "ntos/string.h"
#include "vexkntos/handlerOf.h"
#include "wine/wineKernel.h"

DRIVER_OBJECT* findRackDriver(tRackService const& service) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, service.driver);
  void* driver = nullptr;
  NTSTATUS const status = ObReferenceObjectByName(
      &name, OBJ_CASE_INSENSITIVE, nullptr, 0, *IoDriverObjectType, KernelMode, nullptr, &driver);
  return NT_SUCCESS(status) ? static_cast<DRIVER_OBJECT*>(driver) : nullptr;
}

DEVICE_OBJECT* findRackBus(DRIVER_OBJECT const& driver) {
  DEVICE_OBJECT* device = driver.DeviceObject;
  while (device != nullptr && vexHandlerOf(*device).isChildDevice()) device = device->NextDevice;
  return device;
}
