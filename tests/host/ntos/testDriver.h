#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <mutex>

#include "ntos/io.h"
#include "ntoshost/devices.h"
#include "ntoshost/faults.h"
#include "ntoshost/pool.h"

// A driver for tests, whose dispatch routines are what the test says for each device.

using Dispatch = std::function<NTSTATUS(DEVICE_OBJECT*, IRP*)>;

inline std::map<DEVICE_OBJECT*, Dispatch>& dispatches() {
  static std::map<DEVICE_OBJECT*, Dispatch> all;
  return all;
}

inline std::mutex& dispatchesLock() {
  static std::mutex lock;
  return lock;
}

inline Dispatch dispatchOf(DEVICE_OBJECT* device) {
  std::lock_guard const lock(dispatchesLock());
  return dispatches().at(device);
}

inline void setDispatch(DEVICE_OBJECT* device, Dispatch dispatch) {
  std::lock_guard const lock(dispatchesLock());
  dispatches()[device] = std::move(dispatch);
}

inline NTSTATUS dispatchAsSaid(DEVICE_OBJECT* device, IRP* request) {
  return dispatchOf(device)(device, request);
}

// Completes the request with a status, and returns it.
inline NTSTATUS complete(IRP* request, NTSTATUS status, u64 information = 0) {
  request->IoStatus.Status = status;
  request->IoStatus.Information = information;
  IoCompleteRequest(request, IO_NO_INCREMENT);
  return status;
}

inline NTSTATUS setAllDispatches(DRIVER_OBJECT* driver, UNICODE_STRING*) {
  for (DRIVER_DISPATCH*& dispatch : driver->MajorFunction) dispatch = dispatchAsSaid;
  driver->DriverUnload = [](DRIVER_OBJECT*) {};
  return STATUS_SUCCESS;
}

// A loaded driver, and devices of it that go at the end unless the test has deleted them.
class DriverTest : public testing::Test {
 protected:
  DriverTest() {
    EXPECT_EQ(ntoshost::loadDriver("tester", setAllDispatches, &m_driver), STATUS_SUCCESS);
  }
  ~DriverTest() override {
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::unloadDriver(m_driver), STATUS_SUCCESS);
    dispatches().clear();
    ntoshost::requireNoDevices("the test");
    ntoshost::requireNoOutstanding("the test");
  }

  // A device that is ready, with this dispatch.
  DEVICE_OBJECT* makeDevice(Dispatch dispatch = completeWithSuccess, u32 extensionSize = 0,
                            UNICODE_STRING* name = nullptr, bool isExclusive = false) {
    DEVICE_OBJECT* device = nullptr;
    EXPECT_EQ(
        IoCreateDevice(m_driver, extensionSize, name, FILE_DEVICE_UNKNOWN, 0, isExclusive, &device),
        STATUS_SUCCESS);
    finish(device, std::move(dispatch));
    return device;
  }

  static void finish(DEVICE_OBJECT* device, Dispatch dispatch) {
    device->Flags &= ~DO_DEVICE_INITIALIZING;
    setDispatch(device, std::move(dispatch));
  }

  // One that passes every request on to the one below, on which it is put.
  DEVICE_OBJECT* makeFilter(DEVICE_OBJECT* below) {
    DEVICE_OBJECT* const filter = makeDevice([below](DEVICE_OBJECT*, IRP* request) {
      IoSkipCurrentIrpStackLocation(request);
      return IoCallDriver(below, request);
    });
    EXPECT_EQ(IoAttachDeviceToDeviceStack(filter, below), below);
    return filter;
  }

  static void takeOff(DEVICE_OBJECT* filter, DEVICE_OBJECT* below) {
    IoDetachDevice(below);
    IoDeleteDevice(filter);
  }

  static NTSTATUS completeWithSuccess(DEVICE_OBJECT*, IRP* request) {
    return complete(request, STATUS_SUCCESS);
  }

  // Sends a device control without buffers.
  static NTSTATUS send(DEVICE_OBJECT* device) {
    ntoshost::DeviceControl control = {.code = kCode};
    return ntoshost::controlDevice(device, control);
  }

  static constexpr u32 kCode = ntosControlCode(0x8000, 0x800, METHOD_NEITHER, FILE_ANY_ACCESS);
  static constexpr u32 kBufferedCode =
      ntosControlCode(0x8000, 0x801, METHOD_BUFFERED, FILE_ANY_ACCESS);

  DRIVER_OBJECT* m_driver = nullptr;
};
