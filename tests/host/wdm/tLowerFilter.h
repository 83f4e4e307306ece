#pragma once

// A driver below a bus' function device that fails requests when it is told to.

#include "ntos/driver.h"
#include "ntos/irp.h"

class tLowerFilter {
 public:
  static constexpr NTSTATUS kFailure = STATUS_NO_SUCH_DEVICE;

  explicit tLowerFilter(char const* driverName);
  ~tLowerFilter();
  tLowerFilter(tLowerFilter const&) = delete;
  tLowerFilter& operator=(tLowerFilter const&) = delete;

  // On top of the physical device, until that is removed. Once.
  NTSTATUS attachTo(DEVICE_OBJECT* physicalDevice);

  // The next plug-and-play request of this kind fails. Any thread.
  void failNext(u8 minor);

 private:
  static NTSTATUS enter(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);
  static NTSTATUS dispatch(DEVICE_OBJECT* device, IRP* irp);

  bool takeFailure(u8 minor);

  DRIVER_OBJECT* driver = nullptr;
  u32 failing = 0;  // a bit for each minor code; atomic
};
