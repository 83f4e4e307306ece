#pragma once

#include <pthread.h>

#include "io/deviceSecurity.h"
#include "ntos/io.h"
#include "ownLock.h"

// What the executive knows of a device beside the device object, which it lies behind.
struct DEVOBJ_EXTENSION {
  DEVICE_OBJECT* newer;       // of all devices
  DEVICE_OBJECT* attachedTo;  // the one below in the stack
  i64 references;             // 1 of them while the device is not deleted
  bool isDeleted;
  bool isExclusive;
  bool isPhysical;  // reported to the PnP manager, or made by it
  bool isShut;      // the PnP manager lets nobody open the stack
  POWER_STATE systemState;
  POWER_STATE deviceState;
  ntoshost::DeviceSecurity security;
};

namespace ntoshost {

// All devices, their stacks and their references.
struct DeviceTable {
  pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
  DEVICE_OBJECT* oldest = nullptr;
  u64 count = 0;
};

extern constinit DeviceTable g_devices;

class DevicesLock {
 public:
  DevicesLock() { lockOwn(g_devices.lock); }
  ~DevicesLock() { unlockOwn(g_devices.lock); }
  DevicesLock(DevicesLock const&) = delete;
  DevicesLock& operator=(DevicesLock const&) = delete;
};

// Stops the program unless this is a device that has not gone. `call` names the kernel call.
void requireDevice(void const* device, char const* call);

inline DEVOBJ_EXTENSION& recordOf(DEVICE_OBJECT* device) {
  return *device->DeviceObjectExtension;
}

// The callers of these have the lock.
DEVICE_OBJECT* topOf(DEVICE_OBJECT* device);
DEVICE_OBJECT* bottomOf(DEVICE_OBJECT* device);
i64 addReference(DEVICE_OBJECT* device);

// Gives a reference back; the device goes with the last one.
i64 dropReference(DEVICE_OBJECT* device, char const* call);

// How often the devices of the stack are open.
u64 openFilesIn(DEVICE_OBJECT* device);

// The name of the device's driver, as text for the sentences.
struct DriverText {
  explicit DriverText(DRIVER_OBJECT const* driver);
  char text[80];
};

}  // namespace ntoshost
