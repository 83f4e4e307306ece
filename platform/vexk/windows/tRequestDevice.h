#pragma once

#include "ntos/io.h"
#include "ntos/removeLock.h"

// The device of "vexkwindows/requestDevice.h", and the driver object that a device must have: this
// module is no driver, so it makes one that serves nothing else. PASSIVE_LEVEL.
class tRequestDevice {
 public:
  constexpr tRequestDevice() = default;

  // Makes the device. Without it the layer runs all the same, so a failure is a line at the
  // debugger and nothing more.
  void open();

  // Takes it away and waits until the requests that run have ended. A program that still has it
  // open gets STATUS_INVALID_DEVICE_REQUEST from the kernel from then on.
  void close();

 private:
  static constexpr u32 kServedKinds = 4;

  static NTSTATUS initialise(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);
  static NTSTATUS completeOpening(DEVICE_OBJECT* device, IRP* request);
  static NTSTATUS control(DEVICE_OBJECT* device, IRP* request);

  NTSTATUS makeDriver();
  NTSTATUS makeDevice();
  NTSTATUS secure();
  NTSTATUS link();
  void serve(bool isServing);

  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* device = nullptr;
  bool isLinked = false;
  DRIVER_DISPATCH* former[kServedKinds] = {};  // what the kernel has for the kinds we serve
  IO_REMOVE_LOCK lock = {};                    // of the requests that run
};

extern constinit tRequestDevice vexRequestDevice;
