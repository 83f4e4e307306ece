#include "io/deviceTable.h"
#include "io/names.h"
#include "irqlCheck.h"
#include "ntoshost/devices.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"
#include "pool/objects.h"

namespace ntoshost {
namespace {

constexpr u32 kDeviceTag = ntosPoolTag("Devi");
constexpr u32 kExtensionTag = ntosPoolTag("DevX");
constexpr i16 kDeviceType = 3;  // what the kernel writes into Type
constexpr u32 kLargestExtension = 0xFFFF - sizeof(DEVICE_OBJECT);

// A device with the executive's record behind it.
struct WholeDevice {
  DEVICE_OBJECT device;
  DEVOBJ_EXTENSION record;
};

// The memory of a device, or null.
DEVICE_OBJECT* makeDevice(u32 extensionSize) {
  WholeDevice* const whole =
      static_cast<WholeDevice*>(takeObject(BlockKind::device, sizeof(WholeDevice), kDeviceTag));
  if (whole == nullptr) return nullptr;
  DEVICE_OBJECT& device = whole->device;
  device.DeviceObjectExtension = &whole->record;
  if (extensionSize == 0) return &device;
  device.DeviceExtension = takeObject(BlockKind::extension, extensionSize, kExtensionTag);
  if (device.DeviceExtension != nullptr) return &device;
  releaseObject(&device, "IoCreateDevice");
  return nullptr;
}

void discard(DEVICE_OBJECT* device) {
  if (device->DeviceExtension != nullptr) releaseObject(device->DeviceExtension, "IoCreateDevice");
  releaseObject(device, "IoCreateDevice");
}

void fill(DEVICE_OBJECT& device, DRIVER_OBJECT* driver, u32 extensionSize) {
  device.Type = kDeviceType;
  device.Size = static_cast<u16>(sizeof(DEVICE_OBJECT) + extensionSize);
  device.DriverObject = driver;
  device.Flags = DO_DEVICE_INITIALIZING;
  device.StackSize = 1;
  KeInitializeEvent(&device.DeviceLock, SynchronizationEvent, 1);
  recordOf(&device).references = 1;
}

void publish(DEVICE_OBJECT* device) {
  device->NextDevice = device->DriverObject->DeviceObject;
  device->DriverObject->DeviceObject = device;
  DEVICE_OBJECT** link = &g_devices.oldest;
  while (*link != nullptr) link = &recordOf(*link).newer;
  *link = device;
  ++g_devices.count;
}

void unlinkFromDriver(DEVICE_OBJECT* device) {
  DEVICE_OBJECT** link = &device->DriverObject->DeviceObject;
  while (*link != device) link = &(*link)->NextDevice;
  *link = device->NextDevice;
}

void requireSoundCreation(DRIVER_OBJECT const* driver, u32 extensionSize) {
  requireIrqlAtMost(PASSIVE_LEVEL, "IoCreateDevice");
  if (lookFor(BlockKind::driver, driver) != Presence::live) {
    violation("IoCreateDevice was given something at %p that is no driver.",
              static_cast<void const*>(driver));
  }
  if (extensionSize > kLargestExtension) {
    violation("IoCreateDevice was asked for an extension of %u bytes; %u is the most.",
              extensionSize, kLargestExtension);
  }
}

void requireDeletable(DEVICE_OBJECT* device) {
  DEVOBJ_EXTENSION const& record = recordOf(device);
  void* const address = device;
  if (record.isDeleted) violation("IoDeleteDevice: the device at %p was deleted before.", address);
  // A bus deletes a child in its removal, before the drivers above have let go of it; the PnP
  // manager refers to the child until they have.
  if (device->AttachedDevice != nullptr && record.references == 1) {
    violation("IoDeleteDevice: the device at %p has the device at %p attached above it.", address,
              static_cast<void*>(device->AttachedDevice));
  }
  if (record.attachedTo != nullptr) {
    violation("IoDeleteDevice: the device at %p is still attached to the one at %p.", address,
              static_cast<void*>(record.attachedTo));
  }
  if (device->ReferenceCount != 0) {
    violation("IoDeleteDevice: the device at %p is open (%d handles).", address,
              device->ReferenceCount);
  }
}

}  // namespace

u64 referencesOn(DEVICE_OBJECT* device) {
  DevicesLock const lock;
  requireDevice(device, "referencesOn");
  DEVOBJ_EXTENSION const& record = recordOf(device);
  return static_cast<u64>(record.references - (record.isDeleted ? 0 : 1));
}

}  // namespace ntoshost

NTSTATUS IoCreateDevice(DRIVER_OBJECT* driver, u32 extensionSize, UNICODE_STRING* name,
                        u32 deviceType, u32 characteristics, BOOLEAN isExclusive,
                        DEVICE_OBJECT** result) {
  ntoshost::requireSoundCreation(driver, extensionSize);
  *result = nullptr;
  if (ntoshost::injectFault(ntoshost::kFaultDevice)) return STATUS_INSUFFICIENT_RESOURCES;
  DEVICE_OBJECT* const device = ntoshost::makeDevice(extensionSize);
  if (device == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  ntoshost::fill(*device, driver, extensionSize);
  device->DeviceType = deviceType;
  device->Characteristics = characteristics;
  ntoshost::recordOf(device).isExclusive = isExclusive != 0;
  ntoshost::DevicesLock const lock;
  NTSTATUS const status = name != nullptr ? ntoshost::nameDevice(*name, device) : STATUS_SUCCESS;
  if (!NT_SUCCESS(status)) {
    ntoshost::discard(device);
    return status;
  }
  ntoshost::publish(device);
  *result = device;
  return STATUS_SUCCESS;
}

void IoDeleteDevice(DEVICE_OBJECT* device) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "IoDeleteDevice");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(device, "IoDeleteDevice");
  ntoshost::requireDeletable(device);
  ntoshost::unlinkFromDriver(device);
  ntoshost::forgetNameOf(device);
  ntoshost::recordOf(device).isDeleted = true;
  ntoshost::dropReference(device, "IoDeleteDevice");
}
