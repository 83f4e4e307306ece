#include "wdm/tPnpBus.h"

#include <algorithm>
#include <iterator>

#include "ntos/io.h"
#include "oxdiagk/package.h"
#include "vexk/functionDevice.h"

namespace {

constexpr wchar_t kChildId[] = L"TEST\\Gauge";

tPnpBus* buses[2] = {};

// What stands on top of a child: opens and closes.
class tFunction final : public iDeviceComponent {
 public:
  void start(iChildBus*, i32&) override {}
  void stop(bool) override {}
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {}
  void release() override { delete this; }
};

}  // namespace

tPnpBus::tPnpBus(ntoshost::PnpMode mode, char const* driverName, tLowerFilter* below)
    : filter(below) {
  *std::find(std::begin(buses), std::end(buses), nullptr) = this;
  ntoshost::setPnpMode(mode);
  ntoshost::assignNullDriver(kChildId);
  ntoshost::loadDriver(driverName, &enter, &driver);
  ntoshost::addRootDevice(driver, "OXDIAGBUS", &physical);
  ntoshost::startDevice(physical);
}

tPnpBus::~tPnpBus() {
  if (physical != nullptr) removeBus();
  *std::find(std::begin(buses), std::end(buses), this) = nullptr;
  bool const isLast = buses[0] == nullptr && buses[1] == nullptr;
  if (isLast) ntoshost::setPnpMode(ntoshost::PnpMode::Worker);
  if (isLast) ntoshost::assignDriver(kChildId, nullptr);
  ntoshost::waitForPnp();
  ntoshost::unloadDriver(driver);
  if (isLast && filter == nullptr) ntoshost::requireNoDevices("the test");
}

void tPnpBus::removeBus() {
  ntoshost::removeRootDevice(physical);
  physical = nullptr;
}

NTSTATUS tPnpBus::enter(DRIVER_OBJECT* entered, UNICODE_STRING* /*registryPath*/) {
  pkgSetWDMWrapperLoadStateAndGetGUID(1);
  entered->DriverUnload = [](DRIVER_OBJECT*) { pkgSetWDMWrapperLoadStateAndGetGUID(0); };
  entered->DriverExtension->AddDevice = &addDevice;
  for (DRIVER_DISPATCH*& each : entered->MajorFunction) each = &pkgWDMWrapperHandleIrp;
  return STATUS_SUCCESS;
}

NTSTATUS tPnpBus::addDevice(DRIVER_OBJECT* added, DEVICE_OBJECT* physicalDevice) {
  tFunctionDeviceDescription const description = {added, physicalDevice, FILE_DEVICE_BUS_EXTENDER,
                                                  tModuleGUID::of(kTestBusType), kTestBusNumber};
  tPnpBus* const bus = find(added);
  bool const isChild = physicalDevice->DriverObject == added;
  if (!isChild && bus->filter != nullptr) bus->filter->attachTo(physicalDevice);
  iDeviceComponent* const component = isChild ? static_cast<iDeviceComponent*>(new tFunction) : bus;
  return vexAddFunctionDevice(description, *component);
}

tPnpBus* tPnpBus::find(DRIVER_OBJECT const* wanted) {
  return buses[0] != nullptr && buses[0]->driver == wanted ? buses[0] : buses[1];
}

DEVICE_OBJECT* tPnpBus::getFunction() const {
  DEVICE_OBJECT* device = physical;
  while (device->AttachedDevice != nullptr) device = device->AttachedDevice;
  return device;
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
