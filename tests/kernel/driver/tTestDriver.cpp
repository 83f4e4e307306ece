#include "support/tTestDriver.h"

#include "driver/testDriver.h"

tTestDriver::tTestDriver(DRIVER_DISPATCH* dispatch) : driver(testDriverObject) {
  for (DRIVER_DISPATCH*& each : driver->MajorFunction) each = dispatch;
}

tTestDriver::~tTestDriver() = default;
