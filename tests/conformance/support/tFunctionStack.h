#pragma once

// A function device of the platform on top of a floor device that completes what comes down to it.
// Requests go to the platform's dispatch without anything between.

#include "support/tDeviceRequest.h"
#include "support/tTestDriver.h"
#include "vexk/functionDevice.h"
#include "vexk/iDeviceHandler.h"
#include "vexkntos/handlerOf.h"

// Does as the test says, and remembers what it is told.
class tRecordingComponent : public iDeviceComponent {
 public:
  void start(iChildBus* children, i32& status) override;
  void stop(bool isSurprise) override;
  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;
  void release() override { note('r'); }

  // S start, s stop, x stop by surprise, c control, r release, F a request at the floor.
  char const* getCalls() const { return calls; }
  void note(char call);

  i32 startStatus = 0;
  i32 controlStatus = 0;
  u64 controlInformation = 0;

  iChildBus* place = nullptr;  // of the last start
  i32 cameWith = -1;           // its status before
  u32 code = 0;                // of the last control
  void* input = nullptr;
  u32 inputLength = 0;
  void* output = nullptr;
  u32 outputLength = 0;
  bool wasClear = false;  // information and status were 0 before

 private:
  char calls[32] = {};
  u32 count = 0;
};

constexpr GUID kStackBusType = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
constexpr u32 kStackBusNumber = 3;

// Where there is no memory for the devices, they are null.
class tFunctionStack {
 public:
  explicit tFunctionStack(u32 floorFlags = 0);
  ~tFunctionStack();
  tFunctionStack(tFunctionStack const&) = delete;
  tFunctionStack& operator=(tFunctionStack const&) = delete;

  DEVICE_OBJECT* getDevice() const { return device; }
  DEVICE_OBJECT* getFloor() const { return floor; }
  iDeviceHandler& getHandler() const { return vexHandlerOf(*device); }

  // Whether the function device is the driver's still.
  bool hasDevice() const { return testDriver.newestDevice() != floor; }

  NTSTATUS send(u8 major, u8 minor = 0) const;
  NTSTATUS sendPnp(u8 minor) const { return send(IRP_MJ_PNP, minor); }

  tRecordingComponent component;

  // Completes the request that the floor has kept; it keeps what comes while `keeps` is set.
  // Any thread.
  bool hasKept() const { return __atomic_load_n(&kept, __ATOMIC_ACQUIRE) != nullptr; }
  void completeKept();
  bool keeps = false;

  // Is called at the floor before the request is completed, unless it is null.
  void (*atFloor)(tFunctionStack& stack) = nullptr;

  // What the floor completes with, and the last that it has seen.
  NTSTATUS floorStatus = STATUS_SUCCESS;
  NTSTATUS seenStatus = STATUS_PENDING;  // that a request came with
  u8 seenMajor = 0xFF;
  u8 seenMinor = 0xFF;

 private:
  static NTSTATUS dispatch(DEVICE_OBJECT* target, IRP* request);

  NTSTATUS serveFloor(IRP& request);
  NTSTATUS complete(IRP& request) const;

  tTestDriver testDriver;
  IRP* kept = nullptr;
  DEVICE_OBJECT* floor = nullptr;
  DEVICE_OBJECT* device = nullptr;
};
