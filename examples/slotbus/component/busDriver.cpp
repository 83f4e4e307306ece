#include "slotbus/component/busDriver.h"

#include "ntos/io.h"
#include "oxdiagk/package.h"
#include "slotbus/component/component.h"
#include "slotbus/component/tRackBus.h"
#include "vexk/functionDevice.h"

using nOXDIAG100::tTrace;

namespace nSLOTBUS100 {
namespace {

constexpr tModuleGUID kRackBusType = {
    0x6E0B2C51, 0x7A1D, 0x4F38, {0x93, 0x5E, 0x20, 0x4C, 0xB8, 0x17, 0xD9, 0x62}};

// The kernel calls AddDevice with nothing of ours.
constinit iRackSource* rackSource = nullptr;

NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physicalDevice) {
  tRackBus* const bus = new tRackBus(*rackSource, tTrace::getInstance());
  if (bus == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  tFunctionDeviceDescription const description = {driver, physicalDevice, FILE_DEVICE_BUS_EXTENDER,
                                                  kRackBusType, 0};
  NTSTATUS const status = vexAddFunctionDevice(description, *bus);
  if (!NT_SUCCESS(status)) bus->release();
  return status;
}

}  // namespace

void becomeBusDriver(DRIVER_OBJECT& driver, iRackSource& source) {
  rackSource = &source;
  pkgSetWDMWrapperLoadStateAndGetGUID(1);
  for (DRIVER_DISPATCH*& dispatch : driver.MajorFunction) dispatch = &pkgWDMWrapperHandleIrp;
  driver.DriverExtension->AddDevice = &addDevice;
}

void ceaseBusDriver() {
  pkgSetWDMWrapperLoadStateAndGetGUID(0);
  rackSource = nullptr;
}

}  // namespace nSLOTBUS100
