#include "io/deviceTable.h"
#include "io/driverTable.h"
#include "io/residue.h"
#include "io/runDriver.h"
#include "irqlCheck.h"
#include "ntoshost/devices.h"
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

bool isInUse(DEVICE_OBJECT* device) {
  return device->ReferenceCount != 0 || recordOf(bottomOf(device)).isPhysical;
}

bool isInUse(DRIVER_OBJECT* driver) {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = driver->DeviceObject; each != nullptr; each = each->NextDevice) {
    if (isInUse(each)) return true;
  }
  return false;
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
  driver->DriverInit = entry;
  NTSTATUS const status = runDriver(driver, [&] { return entry(driver, registryPathOf(driver)); });
  if (!NT_SUCCESS(status)) {
    requireNoDevice(driver, "failed DriverEntry");
    requireNoResidue(driver);
    destroyDriver(driver, "loadDriver");
    return status;
  }
  finishDevices(driver);
  *result = driver;
  return status;
}

NTSTATUS unloadDriver(DRIVER_OBJECT* driver) {
  requireIrqlAtMost(PASSIVE_LEVEL, "unloadDriver");
  requireDriver(driver, "unloadDriver");
  if (driver->DriverUnload == nullptr) return STATUS_INVALID_DEVICE_REQUEST;
  if (isInUse(driver)) return STATUS_DEVICE_BUSY;
  forgetAssignments(driver);
  forgetRootDriver(driver);
  runDriver(driver, [&] {
    driver->DriverUnload(driver);
    return STATUS_SUCCESS;
  });
  requireNoDevice(driver, "DriverUnload");
  requireNoResidue(driver);
  destroyDriver(driver, "unloadDriver");
  return STATUS_SUCCESS;
}

}  // namespace ntoshost
