// How the driver of the device over which programs send requests makes that device: its doors are
// entered once more, with the tests between it and the kernel, who take note and refuse.

#include "boot/tModuleImage.h"
#include "conformance/harness.h"
#include "driver/tOpenDevice.h"
#include "guards/tWatchedImport.h"
#include "ntos/driver.h"
#include "ntos/io.h"
#include "ntos/security.h"
#include "ntos/status.h"
#include "ntos/string.h"
#include "wine/wineKernel.h"

namespace {

// What the kernel does to make the device, in that order.
enum tMakingStep : u32 { kMakesDevice, kOpensDevice, kSecuresDevice, kLinksDevice, kMakingSteps };

constexpr NTSTATUS kMakingRefusal = STATUS_ACCESS_DENIED;

// What the driver has called, and with what.
struct tMakingCalls {
  u32 extensionSize;
  u32 kind;
  u32 characteristics;
  BOOLEAN isExclusive;
  u32 handleAttributes;
  ACCESS_MASK access;
  KPROCESSOR_MODE mode;
  HANDLE handle;
  u32 closed;  // calls with that handle
  bool isLinkToDevice;
  u32 deleted;
  u32 unlinked;
  u32 printed;
};

constinit tMakingCalls making = {};
constinit u32 refusedStep = kMakingSteps;

bool isDeviceName(UNICODE_STRING const& name) {
  constexpr u32 kSize = sizeof(kRequestDeviceName) - sizeof(wchar_t);
  return name.Length == kSize && __builtin_memcmp(name.Buffer, kRequestDeviceName, kSize) == 0;
}

// The name is the caller's own again, who has no use for it: nothing of it stays.
NTSTATUS makeNoted(DRIVER_OBJECT* driver, u32 extensionSize, UNICODE_STRING* name, u32 kind,
                   u32 characteristics, BOOLEAN isExclusive, DEVICE_OBJECT** device) {
  if (refusedStep == kMakesDevice) return kMakingRefusal;
  making.extensionSize = extensionSize;
  making.kind = kind;
  making.characteristics = characteristics;
  making.isExclusive = isExclusive;
  NTSTATUS const status =
      IoCreateDevice(driver, extensionSize, name, kind, characteristics, isExclusive, device);
  *name = {};
  return status;
}

NTSTATUS openNotedDevice(void* object, u32 attributes, void* state, ACCESS_MASK access,
                         OBJECT_TYPE* type, KPROCESSOR_MODE mode, HANDLE* handle) {
  if (refusedStep == kOpensDevice) return kMakingRefusal;
  making.handleAttributes = attributes;
  making.access = access;
  making.mode = mode;
  NTSTATUS const status =
      ObOpenObjectByPointer(object, attributes, state, access, type, mode, handle);
  making.handle = *handle;
  return status;
}

NTSTATUS secureNoted(HANDLE handle, u32 parts, void const* descriptor) {
  if (refusedStep == kSecuresDevice) return kMakingRefusal;
  return ZwSetSecurityObject(handle, parts, descriptor);
}

NTSTATUS closeNoted(HANDLE handle) {
  if (handle == making.handle) ++making.closed;
  return ZwClose(handle);
}

NTSTATUS linkNoted(UNICODE_STRING* link, UNICODE_STRING* device) {
  if (refusedStep == kLinksDevice) return kMakingRefusal;
  making.isLinkToDevice = isDeviceName(*device);
  return IoCreateSymbolicLink(link, device);
}

NTSTATUS unlinkNoted(UNICODE_STRING* link) {
  ++making.unlinked;
  return IoDeleteSymbolicLink(link);
}

void deleteNoted(DEVICE_OBJECT* device) {
  ++making.deleted;
  IoDeleteDevice(device);
}

u32 printNoted(u32 /*component*/, u32 /*level*/, char const* /*format*/, __builtin_va_list) {
  ++making.printed;
  return STATUS_SUCCESS;
}

DRIVER_OBJECT* findControlDriver() {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, L"\\Driver\\oxdiagcontrol");
  void* driver = nullptr;
  NTSTATUS const status = ObReferenceObjectByName(
      &name, OBJ_CASE_INSENSITIVE, nullptr, 0, *IoDriverObjectType, KernelMode, nullptr, &driver);
  return NT_SUCCESS(status) ? static_cast<DRIVER_OBJECT*>(driver) : nullptr;
}

// The driver without its device. At the end it has one again.
class tStoppedControl {
 public:
  tStoppedControl() : driver(findControlDriver()) {
    if (isThere()) stop();
    making = {};
  }
  ~tStoppedControl() {
    if (!isThere()) return;
    if (!isStarted) start();
    ObfDereferenceObject(driver);
  }
  tStoppedControl(tStoppedControl const&) = delete;
  tStoppedControl& operator=(tStoppedControl const&) = delete;

  bool isThere() const { return driver != nullptr; }

  // Enters the driver by its door, while the kernel refuses that step.
  NTSTATUS start(u32 refused = kMakingSteps) {
    refusedStep = refused;
    tModuleImage const image(reinterpret_cast<void const*>(driver->DriverUnload));
    NTSTATUS const status =
        reinterpret_cast<DRIVER_INITIALIZE*>(image.findEntry())(driver, nullptr);
    refusedStep = kMakingSteps;
    isStarted = NT_SUCCESS(status);
    return status;
  }

  void stop() {
    driver->DriverUnload(driver);
    isStarted = false;
  }

 private:
  template <class tFunction>
  static void* at(tFunction* function) {
    return reinterpret_cast<void*>(function);
  }

  DRIVER_OBJECT* driver;
  bool isStarted = false;
  tWatchedImport makes{"IoCreateDevice", at(&makeNoted)};
  tWatchedImport opens{"ObOpenObjectByPointer", at(&openNotedDevice)};
  tWatchedImport secures{"ZwSetSecurityObject", at(&secureNoted)};
  tWatchedImport closes{"ZwClose", at(&closeNoted)};
  tWatchedImport links{"IoCreateSymbolicLink", at(&linkNoted)};
  tWatchedImport unlinks{"IoDeleteSymbolicLink", at(&unlinkNoted)};
  tWatchedImport deletes{"IoDeleteDevice", at(&deleteNoted)};
  tWatchedImport prints{"vDbgPrintEx", at(&printNoted)};
};

}  // namespace

TEST(DeviceMaking, TheDeviceIsAPlainOneThatIsSecuredByAHandleOfTheKernel) {
  tStoppedControl control;
  ASSERT_TRUE(control.isThere());
  EXPECT_EQ(tOpenDevice().status, STATUS_OBJECT_NAME_NOT_FOUND);
  EXPECT_EQ(control.start(), STATUS_SUCCESS);
  EXPECT_EQ(tOpenDevice().status, STATUS_SUCCESS);
  EXPECT_EQ(making.extensionSize, u32{0});
  EXPECT_EQ(making.kind, FILE_DEVICE_UNKNOWN);
  EXPECT_EQ(making.characteristics, FILE_DEVICE_SECURE_OPEN);
  EXPECT_EQ(making.isExclusive, 0);
  EXPECT_EQ(making.handleAttributes, OBJ_KERNEL_HANDLE);
  EXPECT_EQ(making.access, WRITE_DAC);
  EXPECT_EQ(making.mode, KernelMode);
  EXPECT_EQ(making.closed, u32{1});
  EXPECT_TRUE(making.isLinkToDevice);
  EXPECT_EQ(making.printed, u32{0});
}

TEST(DeviceMaking, WhatTheKernelRefusesIsToldAndNothingStays) {
  constexpr u32 kDeleted[] = {0, 1, 1, 1};
  constexpr u32 kClosed[] = {0, 0, 1, 1};
  tStoppedControl control;
  ASSERT_TRUE(control.isThere());
  for (u32 step = kMakesDevice; step < kMakingSteps; ++step) {
    making = {};
    EXPECT_EQ(control.start(step), kMakingRefusal);
    EXPECT_EQ(making.deleted, kDeleted[step]);
    EXPECT_EQ(making.unlinked, u32{0});
    EXPECT_EQ(making.closed, kClosed[step]);
    EXPECT_EQ(making.printed, u32{1});
  }
}

TEST(DeviceMaking, AStoppedDriverTakesItsDeviceAndItsNameAwayOnce) {
  tStoppedControl control;
  ASSERT_TRUE(control.isThere());
  EXPECT_EQ(control.start(), STATUS_SUCCESS);
  control.stop();
  EXPECT_EQ(making.deleted, u32{1});
  EXPECT_EQ(making.unlinked, u32{1});
  control.stop();
  EXPECT_EQ(making.deleted, u32{1});
  EXPECT_EQ(making.unlinked, u32{1});
}
