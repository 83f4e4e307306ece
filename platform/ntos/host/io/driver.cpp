#include "io/deviceTable.h"
#include "io/driverTable.h"
#include "io/image.h"
#include "io/residue.h"
#include "io/runDriver.h"
#include "io/unloading.h"
#include "irqlCheck.h"
#include "ntoshost/devices.h"
#include "ntoshost/images.h"
#include "ntoshost/violation.h"
#include "pnp/assignments.h"
#include "pnp/lifecycle.h"
#include "pool/objects.h"

// Drivers loaded and unloaded.

namespace ntoshost {
namespace {

// Stops the program when a device of the driver is left.
void requireNoDevice(DRIVER_OBJECT* driver, char const* after) {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = g_devices.oldest; each != nullptr; each = recordOf(each).newer) {
    if (each->DriverObject != driver) continue;
    violation("The driver %s has left the device at %p behind after its %s.",
              DriverText(driver).text, static_cast<void*>(each), after);
  }
}

// What was made in DriverEntry is ready for use after it.
void finishDevices(DRIVER_OBJECT* driver) {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = driver->DeviceObject; each != nullptr; each = each->NextDevice) {
    each->Flags &= ~DO_DEVICE_INITIALIZING;
  }
}

bool isOpen(DEVICE_OBJECT* device) {
  return device->ReferenceCount != 0;
}

bool isOfPnp(DEVICE_OBJECT* device) {
  return recordOf(bottomOf(device)).isPhysical;
}

// Under the devices' lock.
bool hasDevice(DRIVER_OBJECT* driver, bool (*isSuch)(DEVICE_OBJECT* device)) {
  DEVICE_OBJECT* each = driver->DeviceObject;
  while (each != nullptr && !isSuch(each)) each = each->NextDevice;
  return each != nullptr;
}

bool isInUse(DRIVER_OBJECT* driver) {
  return hasDevice(driver, isOpen) || hasDevice(driver, isOfPnp);
}

// Whether the unloading is the caller's to do. Under the devices' lock.
bool beginUnloading(DRIVER_OBJECT* driver) {
  DriverEnd& end = endOf(driver);
  if (end.isUnloading || isInUse(driver)) return false;
  end.isStopped = end.isUnloading = true;
  return true;
}

// Marks the driver stopped. STATUS_SUCCESS when the unloading is the caller's to do.
NTSTATUS stop(DRIVER_OBJECT* driver) {
  DevicesLock const lock;
  if (endOf(driver).isStopped || hasDevice(driver, isOfPnp)) return STATUS_DEVICE_BUSY;
  endOf(driver).isStopped = true;
  return beginUnloading(driver) ? STATUS_SUCCESS : STATUS_PENDING;
}

bool isReadyToGo(DRIVER_OBJECT* driver) {
  return endOf(driver).isStopped && beginUnloading(driver);
}

// The driver is the caller's from here on: a stopped one that nobody has open any more.
DRIVER_OBJECT* takeStopped() {
  DevicesLock const lock;
  return findDriver(isReadyToGo);
}

void discard(DRIVER_OBJECT* driver, char const* call) {
  MappedImage(driver).unmap();
  destroyDriver(driver, call);
}

// Stops the program when the thread would return into the driver.
void requireOutside(DRIVER_OBJECT* driver) {
  if (!isWithinDriver(driver)) return;
  violation("The driver %s is unloaded by a thread that runs in it.", DriverText(driver).text);
}

void unload(DRIVER_OBJECT* driver, char const* call) {
  requireOutside(driver);
  forgetAssignments(driver);
  forgetRootDriver(driver);
  runDriver(driver, [&] {
    driver->DriverUnload(driver);
    return STATUS_SUCCESS;
  });
  requireNoDevice(driver, "DriverUnload");
  requireNoResidue(driver);
  discard(driver, call);
}

NTSTATUS start(DRIVER_OBJECT* driver, DRIVER_INITIALIZE* entry, char const* call,
               DRIVER_OBJECT** result) {
  driver->DriverInit = entry;
  NTSTATUS const status = runDriver(driver, [&] { return entry(driver, registryPathOf(driver)); });
  if (!NT_SUCCESS(status)) {
    requireNoDevice(driver, "failed DriverEntry");
    requireNoResidue(driver);
    discard(driver, call);
    return status;
  }
  finishDevices(driver);
  *result = driver;
  return status;
}

void requireDriver(DRIVER_OBJECT* driver, char const* call) {
  if (lookFor(BlockKind::driver, driver) == Presence::live) return;
  violation("%s was given something at %p that is no driver.", call, static_cast<void*>(driver));
}

}  // namespace

NTSTATUS loadDriver(char const* name, DRIVER_INITIALIZE* entry, DRIVER_OBJECT** result) {
  requireIrqlAtMost(PASSIVE_LEVEL, "loadDriver");
  *result = nullptr;
  DRIVER_OBJECT* const driver = makeDriver(name);
  if (driver == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  return start(driver, entry, "loadDriver", result);
}

NTSTATUS loadDriverImage(char const* name, char const* file, DRIVER_OBJECT** result) {
  requireIrqlAtMost(PASSIVE_LEVEL, "loadDriverImage");
  *result = nullptr;
  DRIVER_OBJECT* const driver = makeDriver(name);
  if (driver == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  NTSTATUS const status = mapImage(driver, file);
  void* const entry = NT_SUCCESS(status) ? findInImage(driver, "DriverEntry") : nullptr;
  if (entry != nullptr) {
    return start(driver, reinterpret_cast<DRIVER_INITIALIZE*>(entry), "loadDriverImage", result);
  }
  discard(driver, "loadDriverImage");
  return NT_SUCCESS(status) ? STATUS_OBJECT_NAME_NOT_FOUND : status;
}

NTSTATUS unloadDriver(DRIVER_OBJECT* driver) {
  requireIrqlAtMost(PASSIVE_LEVEL, "unloadDriver");
  requireDriver(driver, "unloadDriver");
  if (driver->DriverUnload == nullptr) return STATUS_INVALID_DEVICE_REQUEST;
  {
    DevicesLock const lock;
    if (!beginUnloading(driver)) return STATUS_DEVICE_BUSY;
  }
  unload(driver, "unloadDriver");
  return STATUS_SUCCESS;
}

NTSTATUS stopDriver(DRIVER_OBJECT* driver) {
  requireIrqlAtMost(PASSIVE_LEVEL, "stopDriver");
  requireDriver(driver, "stopDriver");
  if (driver->DriverUnload == nullptr) return STATUS_INVALID_DEVICE_REQUEST;
  NTSTATUS const status = stop(driver);
  if (status == STATUS_SUCCESS) unload(driver, "stopDriver");
  return status;
}

void unloadWhatWaited() {
  while (DRIVER_OBJECT* const driver = takeStopped()) unload(driver, "closeDevice");
}

}  // namespace ntoshost
