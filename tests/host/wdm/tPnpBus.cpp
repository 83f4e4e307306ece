#include "wdm/tPnpBus.h"

#include "ntos/io.h"
#include "oxdiagk/package.h"
#include "vexk/functionDevice.h"

namespace {

constexpr wchar_t kChildId[] = L"TEST\\Gauge";

tPnpBus* theBus = nullptr;

// What stands on top of a child: opens and closes.
class tFunction final : public iDeviceComponent {
 public:
  void start(iChildBus*, i32&) override {}
  void stop(bool) override {}
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {}
  void release() override { delete this; }
};

void unload(DRIVER_OBJECT* /*driver*/) {
}

}  // namespace

tPnpBus::tPnpBus(ntoshost::PnpMode mode) {
  theBus = this;
  pkgSetWDMWrapperLoadStateAndGetGUID(1);
  ntoshost::setPnpMode(mode);
  ntoshost::loadDriver("oxdiagbus", &enter, &driver);
  ntoshost::addRootDevice(driver, "OXDIAGBUS", &physical);
  ntoshost::startDevice(physical);
}

tPnpBus::~tPnpBus() {
  if (physical != nullptr) removeBus();
  ntoshost::setPnpMode(ntoshost::PnpMode::Worker);
  ntoshost::waitForPnp();
  ntoshost::unloadDriver(driver);
  ntoshost::requireNoDevices("the test");
  pkgSetWDMWrapperLoadStateAndGetGUID(0);
}

void tPnpBus::removeBus() {
  ntoshost::removeRootDevice(physical);
  physical = nullptr;
}

NTSTATUS tPnpBus::enter(DRIVER_OBJECT* entered, UNICODE_STRING* /*registryPath*/) {
  entered->DriverUnload = &unload;
  entered->DriverExtension->AddDevice = &addDevice;
  for (DRIVER_DISPATCH*& each : entered->MajorFunction) each = &pkgWDMWrapperHandleIrp;
  return STATUS_SUCCESS;
}

NTSTATUS tPnpBus::addDevice(DRIVER_OBJECT* added, DEVICE_OBJECT* physicalDevice) {
  tFunctionDeviceDescription const description = {added, physicalDevice, FILE_DEVICE_BUS_EXTENDER,
                                                  kTestBusType, kTestBusNumber};
  bool const isChild = physicalDevice->DriverObject == added;
  iDeviceComponent* const component =
      isChild ? static_cast<iDeviceComponent*>(new tFunction) : theBus;
  return vexAddFunctionDevice(description, *component);
}

void tPnpBus::assignFunction() {
  ntoshost::assignDriver(kChildId, driver);
}

i32 tPnpBus::create(u64 instance, u32 slot, iDeviceHandler& served) {
  tTestChild child(handler, instance, slot);
  child.description.handler = &served;
  i32 status = 0;
  children->createChild(child.description, status);
  return status;
}

DEVICE_OBJECT* tPnpBus::addStarted(u64 instance, u32 slot) {
  create(instance, slot, handler);
  ntoshost::enumerateDevice(physical);
  return ntoshost::childOf(physical, ntoshost::childrenOf(physical) - 1);
}

i32 tPnpBus::take(u32 slot) {
  i32 status = 0;
  children->removeChild(slot, status);
  return status;
}

void tPnpBus::start(iChildBus* place, i32& /*status*/) {
  children = place;
}

void tPnpBus::stop(bool /*isSurprise*/) {
  if (beforeStop != nullptr) beforeStop(context);
}
