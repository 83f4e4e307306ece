#include "io/deviceTable.h"

#include "io/removeLocks.h"
#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "pool/objects.h"
#include "wait/heldLocks.h"

namespace ntoshost {

constinit DeviceTable g_devices;

namespace {

void requireUnlocked(DEVICE_OBJECT* device) {
  void const* const bytes = device->DeviceExtension;
  size_t const size = device->Size - sizeof(DEVICE_OBJECT);
  void const* const removeLock = forgetRemoveLocks(bytes, size);
  if (removeLock != nullptr) {
    violation("The device at %p goes while the remove lock at %p in its extension is held.",
              static_cast<void*>(device), removeLock);
  }
  void const* const lock = ownedLockWithin(bytes, size);
  if (lock == nullptr) return;
  violation("The device at %p goes while a thread owns the mutex at %p in its extension.",
            static_cast<void*>(device), lock);
}

void unlink(DEVICE_OBJECT* device) {
  DEVICE_OBJECT** link = &g_devices.oldest;
  while (*link != device) link = &recordOf(*link).newer;
  *link = recordOf(device).newer;
  --g_devices.count;
}

void destroy(DEVICE_OBJECT* device, char const* call) {
  unlink(device);
  if (device->DeviceExtension != nullptr) {
    requireUnlocked(device);
    releaseObject(device->DeviceExtension, call);
  }
  releaseObject(device, call);
}

}  // namespace

void requireDevice(void const* device, char const* call) {
  switch (lookFor(BlockKind::device, device)) {
    case Presence::live:
      return;
    case Presence::freed:
      violation("%s was given the device at %p, which is gone.", call, device);
    case Presence::unknown:
      violation("%s was given something at %p that is no device.", call, device);
  }
}

DEVICE_OBJECT* topOf(DEVICE_OBJECT* device) {
  while (device->AttachedDevice != nullptr) device = device->AttachedDevice;
  return device;
}

DEVICE_OBJECT* bottomOf(DEVICE_OBJECT* device) {
  while (recordOf(device).attachedTo != nullptr) device = recordOf(device).attachedTo;
  return device;
}

i64 addReference(DEVICE_OBJECT* device) {
  return ++recordOf(device).references;
}

i64 dropReference(DEVICE_OBJECT* device, char const* call) {
  DEVOBJ_EXTENSION& record = recordOf(device);
  if (record.references == (record.isDeleted ? 0 : 1)) {
    violation("%s: there is no reference on the device at %p to give back.", call,
              static_cast<void*>(device));
  }
  i64 const left = --record.references;
  if (left == 0) destroy(device, call);
  return left;
}

u64 openFilesIn(DEVICE_OBJECT* device) {
  u64 count = 0;
  for (DEVICE_OBJECT* each = bottomOf(device); each != nullptr; each = each->AttachedDevice) {
    count += static_cast<u64>(each->ReferenceCount);
  }
  return count;
}

DriverText::DriverText(DRIVER_OBJECT const* driver) {
  UNICODE_STRING const& name = driver->DriverName;
  size_t length = 0;
  for (; length < name.Length / sizeof(wchar_t) && length < sizeof(text) - 1; ++length) {
    text[length] = static_cast<char>(name.Buffer[length]);
  }
  text[length] = 0;
}

}  // namespace ntoshost

i64 ObfReferenceObject(void* object) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "ObfReferenceObject");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(object, "ObfReferenceObject");
  return ntoshost::addReference(static_cast<DEVICE_OBJECT*>(object));
}

i64 ObfDereferenceObject(void* object) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "ObfDereferenceObject");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(object, "ObfDereferenceObject");
  return ntoshost::dropReference(static_cast<DEVICE_OBJECT*>(object), "ObfDereferenceObject");
}
