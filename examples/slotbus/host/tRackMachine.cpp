#include "slotbus/host/tRackMachine.h"

#include "ntoshost/executive.h"
#include "slotbus/component/busDriver.h"
#include "slotbus/component/slotControl.h"

using namespace nSLOTBUS100;

namespace {

// The kernel calls the driver's entry with nothing of ours.
iRackSource* rackSource = nullptr;

void unload(DRIVER_OBJECT*) {
  ceaseBusDriver();
}

NTSTATUS enterDriver(DRIVER_OBJECT* driver, UNICODE_STRING*) {
  becomeBusDriver(*driver, *rackSource);
  driver->DriverUnload = unload;
  return STATUS_SUCCESS;
}

}  // namespace

tRackMachine::tRackMachine(iRackSource& source) {
  rackSource = &source;
  if (!NT_SUCCESS(ntoshost::loadDriver("slotbus", enterDriver, &driver))) return;
  if (!NT_SUCCESS(ntoshost::addRootDevice(driver, "SLOTBUS", &bus))) return;
  isStarted = NT_SUCCESS(ntoshost::startDevice(bus));
  ntoshost::waitForPnp();
}

tRackMachine::~tRackMachine() {
  if (bus != nullptr) ntoshost::removeRootDevice(bus);
  if (driver != nullptr) ntoshost::unloadDriver(driver);
  rackSource = nullptr;
}

void tRackMachine::askNextDevice() {
  u64 const count = ntoshost::childrenOf(bus);
  if (count == 0) return;
  DEVICE_OBJECT* const device = ntoshost::childOf(bus, nextDevice++ % count);
  tSlotLine line;
  ntoshost::DeviceControl control;
  control.code = kControlTellLine;
  control.output = &line;
  control.outputLength = sizeof(line);
  ntoshost::controlDevice(device, control);
}
