#pragma once

// A bus that the host's PnP manager drives, and a function driver for its children. Two of them may
// be there at a time, with drivers of different names.

#include <string>
#include <vector>

#include "ntoshost/executive.h"
#include "support/tBusStack.h"
#include "wdm/tLowerFilter.h"

class tPnpBus : public iDeviceComponent {
 public:
  // With a filter, which outlives the bus, below the function device.
  explicit tPnpBus(ntoshost::PnpMode mode = ntoshost::PnpMode::Worker,
                   char const* driverName = "oxdiagbus", tLowerFilter* below = nullptr);
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

  // The function device, which the requests to the bus are sent to.
  DEVICE_OBJECT* getFunction() const;

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
  static tPnpBus* find(DRIVER_OBJECT const* driver);

  tLowerFilter* const filter;
  DRIVER_OBJECT* driver = nullptr;
};
