#pragma once

#include "ntos/io.h"

// The device of "vexkwindows/requestDevice.h". Nothing counts its requests: the I/O manager unloads
// a driver only when nobody has its devices open, and so never while a request is in here.
// PASSIVE_LEVEL.
class tRequestDevice {
 public:
  constexpr tRequestDevice() = default;

  // Makes the device, its security and its link; for DriverEntry, after which the kernel lets
  // programs open it. Of what fails nothing stays.
  NTSTATUS open(DRIVER_OBJECT& driver);

  // Takes away what open has made.
  void close();

  // The dispatch of the device's four kinds of requests: create, cleanup, close, device control.
  static NTSTATUS dispatch(DEVICE_OBJECT* device, IRP* request);

 private:
  NTSTATUS makeDevice(DRIVER_OBJECT& driver);
  NTSTATUS secure();
  NTSTATUS link();

  DEVICE_OBJECT* device = nullptr;
  bool isLinked = false;
};
