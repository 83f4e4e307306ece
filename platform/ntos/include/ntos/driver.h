#pragma once

#include "ntos/device.h"
#include "ntos/status.h"

// Index into DRIVER_OBJECT::MajorFunction; the highest kind of request.
constexpr u32 IRP_MJ_CREATE = 0x00;
constexpr u32 IRP_MJ_CLOSE = 0x02;
constexpr u32 IRP_MJ_DEVICE_CONTROL = 0x0E;
constexpr u32 IRP_MJ_INTERNAL_DEVICE_CONTROL = 0x0F;
constexpr u32 IRP_MJ_CLEANUP = 0x12;
constexpr u32 IRP_MJ_POWER = 0x16;
constexpr u32 IRP_MJ_SYSTEM_CONTROL = 0x17;
constexpr u32 IRP_MJ_PNP = 0x1B;
constexpr u32 IRP_MJ_MAXIMUM_FUNCTION = 0x1B;

// What a driver gives the kernel to call. All but DRIVER_DISPATCH run at PASSIVE_LEVEL.
using DRIVER_INITIALIZE = NTSTATUS(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);
using DRIVER_UNLOAD = void(DRIVER_OBJECT* driver);
using DRIVER_DISPATCH = NTSTATUS(DEVICE_OBJECT* device, IRP* request);
using DRIVER_ADD_DEVICE = NTSTATUS(DRIVER_OBJECT* driver, DEVICE_OBJECT* physicalDevice);

struct DRIVER_EXTENSION {
  DRIVER_OBJECT* DriverObject;
  DRIVER_ADD_DEVICE* AddDevice;  // set by a driver for plug-and-play devices
  u32 Count;
  UNICODE_STRING ServiceKeyName;
};
static_assert(sizeof(DRIVER_EXTENSION) == 40);
static_assert(offsetof(DRIVER_EXTENSION, AddDevice) == 8);
static_assert(offsetof(DRIVER_EXTENSION, ServiceKeyName) == 24);

// One loaded driver, made by the kernel and given to DriverEntry, which sets DriverUnload, the
// entries of MajorFunction that it serves, and DriverExtension->AddDevice.
struct _DRIVER_OBJECT {
  i16 Type;
  i16 Size;
  DEVICE_OBJECT* DeviceObject;
  u32 Flags;
  void* DriverStart;
  u32 DriverSize;  // bytes
  void* DriverSection;
  DRIVER_EXTENSION* DriverExtension;
  UNICODE_STRING DriverName;
  UNICODE_STRING* HardwareDatabase;
  void* FastIoDispatch;
  DRIVER_INITIALIZE* DriverInit;
  void* DriverStartIo;
  DRIVER_UNLOAD* DriverUnload;
  DRIVER_DISPATCH* MajorFunction[IRP_MJ_MAXIMUM_FUNCTION + 1];
};
static_assert(sizeof(DRIVER_OBJECT) == 336);
static_assert(offsetof(DRIVER_OBJECT, DeviceObject) == 8);
static_assert(offsetof(DRIVER_OBJECT, DriverStart) == 24);
static_assert(offsetof(DRIVER_OBJECT, DriverExtension) == 48);
static_assert(offsetof(DRIVER_OBJECT, DriverName) == 56);
static_assert(offsetof(DRIVER_OBJECT, DriverInit) == 88);
static_assert(offsetof(DRIVER_OBJECT, DriverUnload) == 104);
static_assert(offsetof(DRIVER_OBJECT, MajorFunction) == 112);

extern "C" {

// Loads or unloads the driver of a service key, such as
// \Registry\Machine\System\CurrentControlSet\Services\slotbus. PASSIVE_LEVEL, in a system thread.
// ZwLoadDriver returns what its DriverEntry returned, or why it did not come to that.
NTOS_IMPORT NTSTATUS ZwLoadDriver(UNICODE_STRING const* serviceKey);
NTOS_IMPORT NTSTATUS ZwUnloadDriver(UNICODE_STRING const* serviceKey);
}
