#include "tLoadedRack.h"

#include "ntos/io.h"
#include "ntos/string.h"
#include "vexkntos/handlerOf.h"
#include "wine/rackDriver.h"

char const* tLoadedRack::load() {
  if (!NT_SUCCESS(place.plugIn())) return "the rack cannot be plugged in";
  UNICODE_STRING key;
  RtlInitUnicodeString(&key, service.key);
  if (!NT_SUCCESS(ZwLoadDriver(&key))) return "slotbus.sys cannot be loaded";
  driver = findRackDriver(service);
  if (driver == nullptr) return "slotbus.sys has no driver object";
  place.invalidate();
  enumerator.settle();
  return findDevices();
}

// The kernel keeps the youngest device of a driver first.
char const* tLoadedRack::findDevices() {
  u32 left = kSlots;
  for (DEVICE_OBJECT* device = driver->DeviceObject; device != nullptr;
       device = device->NextDevice) {
    if (!vexHandlerOf(*device).isChildDevice()) continue;
    if (left == 0) return "there are more children than good lines";
    slots[--left] = device;
  }
  bus = findRackBus(*driver);
  if (bus == nullptr) return "there is no bus";
  return left == 0 ? nullptr : "there are fewer children than good lines";
}

char const* tLoadedRack::unload() {
  char const* problem = NT_SUCCESS(place.pullOut()) ? nullptr : "the rack cannot be pulled out";
  if (driver == nullptr) return problem;
  if (driver->DeviceObject != nullptr) problem = "a device is left over";
  ObfDereferenceObject(driver);
  driver = nullptr;
  UNICODE_STRING key;
  RtlInitUnicodeString(&key, service.key);
  if (!NT_SUCCESS(ZwUnloadDriver(&key))) problem = "slotbus.sys cannot be unloaded";
  return problem;
}
