// Two drivers with a bus each, loaded and unloaded in every order.

#include <gtest/gtest.h>

#include <string>

#include "ntoshost/devices.h"
#include "ntoshost/pnp.h"
#include "oxdiagk/package.h"
#include "support/tBusStack.h"
#include "trace/startedModules.h"
#include "vexk/functionDevice.h"
#include "wdm/tMortalHandler.h"

namespace {

constexpr int kDrivers = 2;
constexpr int kSteps = 5;
constexpr u64 kChildren = 3;

// One driver and its bus, on its way through five steps.
class tBusDriver final : public iDeviceComponent {
 public:
  explicit tBusDriver(int index) : number(index) { drivers[number] = this; }
  tBusDriver(tBusDriver const&) = delete;
  tBusDriver& operator=(tBusDriver const&) = delete;

  void step() {
    switch (steps++) {
      case 0:
        EXPECT_EQ(ntoshost::loadDriver(name().c_str(), entries[number], &driver), STATUS_SUCCESS);
        return;
      case 1:
        EXPECT_EQ(ntoshost::addRootDevice(driver, name().c_str(), &bus), STATUS_SUCCESS);
        EXPECT_EQ(ntoshost::startDevice(bus), STATUS_SUCCESS);
        return;
      case 2:
        addChild();
        return;
      case 3:
        remove();
        return;
      default:
        EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_SUCCESS);
        EXPECT_EQ(fate.stops, 0);  // they were counted when the bus went
    }
  }

  // The bus, while there is one, has its children, and they serve.
  void demandWhole() {
    if (bus == nullptr) return;
    EXPECT_EQ(ntoshost::enumerateDevice(bus), STATUS_SUCCESS);
    ASSERT_EQ(ntoshost::childrenOf(bus), made);
    for (u64 index = 0; index < made; ++index) {
      ntoshost::DeviceControl control;
      EXPECT_EQ(ntoshost::controlDevice(ntoshost::childOf(bus, index), control), STATUS_SUCCESS);
    }
  }

  void start(iChildBus* place, i32&) override {
    children = place;
    while (made + 1 < kChildren) addChild();
  }
  void stop(bool) override {}
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {}
  void release() override {}

 private:
  std::string name() const { return number == 0 ? "oxdiagfirst" : "oxdiagsecond"; }

  void addChild() {
    tChildHandler unused;
    tTestChild child(unused, made, static_cast<u32>(made));
    child.description.handler = new tMortalHandler(fate);
    i32 status = 0;
    children->createChild(child.description, status);
    EXPECT_EQ(status, 0);
    ++made;
  }

  // The second by surprise.
  void remove() {
    if (number == 0) {
      EXPECT_EQ(ntoshost::removeRootDevice(bus), STATUS_SUCCESS);
    } else {
      EXPECT_EQ(ntoshost::surpriseRemoveDevice(bus), STATUS_SUCCESS);
    }
    EXPECT_EQ(fate.stops, static_cast<int>(made));
    fate.stops = 0;
    bus = nullptr;
  }

  template <int index>
  static NTSTATUS enter(DRIVER_OBJECT* entered, UNICODE_STRING*) {
    pkgSetWDMWrapperLoadStateAndGetGUID(1);
    entered->DriverUnload = [](DRIVER_OBJECT*) { pkgSetWDMWrapperLoadStateAndGetGUID(0); };
    entered->DriverExtension->AddDevice = &add<index>;
    for (DRIVER_DISPATCH*& each : entered->MajorFunction) each = &pkgWDMWrapperHandleIrp;
    return STATUS_SUCCESS;
  }

  template <int index>
  static NTSTATUS add(DRIVER_OBJECT* added, DEVICE_OBJECT* physical) {
    tFunctionDeviceDescription const description = {added, physical, FILE_DEVICE_BUS_EXTENDER,
                                                    tModuleGUID::of(kTestBusType), kTestBusNumber};
    return vexAddFunctionDevice(description, *drivers[index]);
  }

  static inline tBusDriver* drivers[kDrivers] = {};
  static constexpr DRIVER_INITIALIZE* entries[kDrivers] = {&enter<0>, &enter<1>};

  int const number;
  int steps = 0;
  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* bus = nullptr;
  iChildBus* children = nullptr;
  u64 made = 0;
  tMortalFate fate;
};

// One order of the steps of both: bit by bit, whose turn it is.
void run(unsigned order) {
  SCOPED_TRACE(order);
  tBusDriver first(0);
  tBusDriver second(1);
  for (int turn = 0; turn < kDrivers * kSteps; ++turn) {
    ((order >> turn & 1) == 0 ? first : second).step();
    first.demandWhole();
    second.demandWhole();
  }
  ntoshost::requireNoDevices("two drivers");
}

}  // namespace

TEST(TwoDrivers, MayComeAndGoInEveryOrder) {
  int orders = 0;
  for (unsigned order = 0; order < 1U << kDrivers * kSteps; ++order) {
    if (__builtin_popcount(order) != kSteps) continue;
    run(order);
    ++orders;
  }
  EXPECT_EQ(orders, 252);
}
