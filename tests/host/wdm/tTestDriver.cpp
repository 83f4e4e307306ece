#include "support/tTestDriver.h"

#include "ntoshost/devices.h"

namespace {

NTSTATUS enter(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = [](DRIVER_OBJECT*) {};
  return STATUS_SUCCESS;
}

}  // namespace

tTestDriver::tTestDriver(DRIVER_DISPATCH* dispatch) {
  ntoshost::loadDriver("oxdiagtest", &enter, &driver);
  for (DRIVER_DISPATCH*& each : driver->MajorFunction) each = dispatch;
}

tTestDriver::~tTestDriver() {
  ntoshost::unloadDriver(driver);
}
