#pragma once

// The driver object that a test makes its devices with. All its requests go to one dispatch
// routine. Each target has its own source.

#include "ntos/driver.h"

class tTestDriver {
 public:
  explicit tTestDriver(DRIVER_DISPATCH* dispatch);
  ~tTestDriver();
  tTestDriver(tTestDriver const&) = delete;
  tTestDriver& operator=(tTestDriver const&) = delete;

  DRIVER_OBJECT* get() const { return driver; }

  // The device made last that is not deleted.
  DEVICE_OBJECT* newestDevice() const { return driver->DeviceObject; }

 private:
  DRIVER_OBJECT* driver = nullptr;
};
