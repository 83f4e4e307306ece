#pragma once

// A request of the test's own to a device, kept after its completion. Without a device, and without
// memory, it is not sent, and its status is STATUS_INSUFFICIENT_RESOURCES.

#include "ntos/io.h"

class tDeviceRequest {
 public:
  tDeviceRequest(DEVICE_OBJECT* target, u8 major, u8 minor = 0);
  ~tDeviceRequest();
  tDeviceRequest(tDeviceRequest const&) = delete;
  tDeviceRequest& operator=(tDeviceRequest const&) = delete;

  // What the device's driver finds, before it is sent.
  IO_STACK_LOCATION& location() { return *IoGetNextIrpStackLocation(irp); }
  IO_STATUS_BLOCK& ioStatus() { return irp->IoStatus; }

  // Sends it. Returns what the dispatch routine returned.
  NTSTATUS send();

  // Calls the wrapper with it, whatever its major code and the status that it comes with; the same.
  NTSTATUS sendPastTheKernel(NTSTATUS status = STATUS_NOT_SUPPORTED);

  // How often it was completed, and with what.
  int completions() const { return completionCount; }
  NTSTATUS status() const { return irp->IoStatus.Status; }

  // The answer of a request.
  template <class T>
  T* answer() const {
    return reinterpret_cast<T*>(irp->IoStatus.Information);
  }

  // Gives the answer back, and for relations the references.
  void freeAnswer();
  void freeRelations();

  IRP* irp;

 private:
  struct tSpare {
    IRP irp = {};
    IO_STACK_LOCATION locations[1] = {};
  };

  void useSpare();
  NTSTATUS giveUp();
  static NTSTATUS keep(DEVICE_OBJECT* device, IRP* irp, void* context);

  DEVICE_OBJECT* device;
  int completionCount = 0;
  tSpare spare;
};

// Sends one without parameters. Returns the status that it was completed with.
NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor);
