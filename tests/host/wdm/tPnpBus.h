#pragma once

// A bus that the host's PnP manager drives, and a function driver for its children.

#include <string>
#include <vector>

#include "ntoshost/executive.h"
#include "support/tBusStack.h"

class tPnpBus : public iDeviceComponent {
 public:
  explicit tPnpBus(ntoshost::PnpMode mode = ntoshost::PnpMode::Worker);
  ~tPnpBus();
  tPnpBus(tPnpBus const&) = delete;
  tPnpBus& operator=(tPnpBus const&) = delete;

  // Makes a child and has the manager start it.
  DEVICE_OBJECT* addStarted(u64 instance, u32 slot);
  i32 create(u64 instance, u32 slot, iDeviceHandler& served);

  // Takes a child away; waits.
  i32 take(u32 slot);

  // Children get a function device from now on.
  void assignFunction();

  void removeBus();

  void start(iChildBus* place, i32& status) override;
  void stop(bool isSurprise) override;
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {}
  void release() override {}

  DEVICE_OBJECT* physical = nullptr;
  iChildBus* children = nullptr;
  tChildHandler handler;
  void (*beforeStop)(void* context) = nullptr;
  void* context = nullptr;

 private:
  static NTSTATUS enter(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);
  static NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physicalDevice);

  DRIVER_OBJECT* driver = nullptr;
};
