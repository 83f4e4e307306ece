// Children that go while others use them, and those who wait for that.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "isWaiting.h"
#include "ntos/wait.h"
#include "ntoshost/time.h"
#include "package/windows/wdm/tChildDevice.h"
#include "trace/startedModules.h"
#include "wdm/tPnpBus.h"

namespace {

constexpr auto kLongEnough = std::chrono::seconds(20);

// Serves its first request until it is told to end.
class tSlowHandler : public tChildHandler {
 public:
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {
    if (++requests != 1) return;
    begun.set_value();
    mayEnd.get_future().wait();
    hasEnded = true;
  }

  std::promise<void> begun;
  std::promise<void> mayEnd;
  std::atomic<int> requests = 0;
  std::atomic<bool> hasEnded = false;
};

NTSTATUS control(DEVICE_OBJECT* device) {
  ntoshost::DeviceControl request;
  return ntoshost::controlDevice(device, request);
}

NTSTATUS setDevicePower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state) {
  POWER_STATE power;
  power.DeviceState = state;
  return ntoshost::setPower(device, DevicePowerState, power);
}

// Takes a child away in a thread of its own.
std::future<i32> takeAside(tPnpBus& bus, u32 slot) {
  return std::async(std::launch::async, [&bus, slot] { return bus.take(slot); });
}

void waitUntilAbsent(DEVICE_OBJECT* device) {
  using namespace nOXDIAG100;
  auto* const extension = static_cast<tDeviceExtension*>(device->DeviceExtension);
  tChildDevice& child = *static_cast<tChildDevice*>(extension);
  for (;;) {
    KeWaitForSingleObject(&child.mutex, Executive, KernelMode, 0, nullptr);
    bool const isAwaited = child.isAwaited;
    KeReleaseMutex(&child.mutex, 0);
    if (isAwaited) return;
    std::this_thread::yield();
  }
}

}  // namespace

TEST(RemovalThreads, AStartedChildGoesThroughTheSystem) {
  tPnpBus bus;
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(control(child), STATUS_SUCCESS);
  EXPECT_EQ(bus.take(5), 0);
  ntoshost::waitForPnp();
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(RemovalThreads, OthersStay) {
  tPnpBus bus;
  for (u32 slot = 1; slot <= 3; ++slot) ASSERT_NE(bus.addStarted(slot, slot), nullptr);
  EXPECT_EQ(bus.take(2), 0);
  ntoshost::waitForPnp();
  ASSERT_EQ(ntoshost::childrenOf(bus.physical), 2u);
  EXPECT_EQ(control(ntoshost::childOf(bus.physical, 0)), STATUS_SUCCESS);
  EXPECT_EQ(control(ntoshost::childOf(bus.physical, 1)), STATUS_SUCCESS);
}

TEST(RemovalThreads, ARequestInFlightIsWaitedFor) {
  tPnpBus bus;
  tSlowHandler slow;
  ASSERT_EQ(bus.create(1, 5, slow), 0);
  ntoshost::enumerateDevice(bus.physical);
  DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
  ObfReferenceObject(child);
  std::future<NTSTATUS> request =
      std::async(std::launch::async, [child] { return control(child); });
  slow.begun.get_future().wait();
  std::future<i32> removal = takeAside(bus, 5);
  while (control(child) != STATUS_DELETE_PENDING) {
  }
  EXPECT_TRUE(isWaiting(removal));
  EXPECT_FALSE(slow.hasEnded);
  slow.mayEnd.set_value();
  ASSERT_EQ(removal.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_EQ(removal.get(), 0);
  EXPECT_TRUE(slow.hasEnded);
  EXPECT_EQ(request.get(), STATUS_SUCCESS);
  ntoshost::waitForPnp();
  ObfDereferenceObject(child);
}

TEST(RemovalThreads, AnUnstartedChildsRequestIsWaitedFor) {
  ntoshost::setChildrenStart(false);
  tPnpBus bus;
  tSlowHandler slow;
  ASSERT_EQ(bus.create(1, 5, slow), 0);
  ntoshost::enumerateDevice(bus.physical);
  DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
  std::future<NTSTATUS> request =
      std::async(std::launch::async, [child] { return control(child); });
  slow.begun.get_future().wait();
  std::future<i32> removal = takeAside(bus, 5);
  EXPECT_TRUE(isWaiting(removal));
  slow.mayEnd.set_value();
  EXPECT_EQ(removal.get(), 0);
  EXPECT_TRUE(slow.hasEnded);
  EXPECT_EQ(request.get(), STATUS_SUCCESS);
  ntoshost::setChildrenStart(true);
  ntoshost::enumerateDevice(bus.physical);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(RemovalThreads, AnOpenHandleKeepsTheDeviceButNotTheHandler) {
  tPnpBus bus;
  bus.assignFunction();
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(child, &file), STATUS_SUCCESS);
  EXPECT_EQ(bus.take(5), 0);
  EXPECT_EQ(control(child), STATUS_DELETE_PENDING);
  ntoshost::waitForPnp();
  EXPECT_EQ(ntoshost::countDevices().files, 1u);
  EXPECT_GE(ntoshost::countDevices().devices, 4u);
  ntoshost::closeDevice(file);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
  EXPECT_EQ(ntoshost::countDevices().devices, 2u);
}

TEST(RemovalThreads, PowerDownLetsAWaiterGo) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  std::future<i32> removal = takeAside(bus, 5);
  waitUntilAbsent(child);
  EXPECT_EQ(setDevicePower(child, PowerDeviceD0), STATUS_SUCCESS);
  EXPECT_TRUE(isWaiting(removal));
  EXPECT_EQ(control(child), STATUS_SUCCESS);
  EXPECT_EQ(setDevicePower(child, PowerDeviceD3), STATUS_SUCCESS);
  EXPECT_EQ(removal.get(), 0);
  EXPECT_EQ(control(child), STATUS_DELETE_PENDING);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(RemovalThreads, EveryStateButTheFirstIsWaitedFor) {
  for (u8 minor : {IRP_MN_QUERY_STOP_DEVICE, IRP_MN_STOP_DEVICE, IRP_MN_QUERY_REMOVE_DEVICE,
                   IRP_MN_SURPRISE_REMOVAL}) {
    tPnpBus bus(ntoshost::PnpMode::OnRequest);
    DEVICE_OBJECT* const child = bus.addStarted(1, 5);
    EXPECT_EQ(sendPnp(child, minor), STATUS_SUCCESS);
    std::future<i32> removal = takeAside(bus, 5);
    waitUntilAbsent(child);
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 1u);
    while (ntoshost::runPnpWork() == 0) std::this_thread::yield();
    EXPECT_EQ(removal.get(), 0);
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
  }
}

TEST(RemovalThreads, ASurpriseLetsAWaiterGoOnce) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  std::future<i32> removal = takeAside(bus, 5);
  waitUntilAbsent(child);
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(child), STATUS_SUCCESS);
  EXPECT_EQ(removal.get(), 0);
  ntoshost::runPnpWork();
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(RemovalThreads, AnOrderlyRemovalLetsAWaiterGo) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  std::future<i32> removal = takeAside(bus, 5);
  waitUntilAbsent(child);
  EXPECT_EQ(ntoshost::removeDevice(child), STATUS_SUCCESS);
  EXPECT_TRUE(isWaiting(removal));  // its bus lists it still
  while (ntoshost::runPnpWork() == 0) std::this_thread::yield();
  EXPECT_EQ(removal.get(), 0);
  EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
}

TEST(RemovalThreads, ABusThatGoesLetsAWaiterGo) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  DEVICE_OBJECT* const child = bus.addStarted(1, 5);
  std::future<i32> removal = takeAside(bus, 5);
  waitUntilAbsent(child);
  bus.context = &removal;
  bus.beforeStop = [](void* context) { static_cast<std::future<i32>*>(context)->wait(); };
  bus.removeBus();
  EXPECT_EQ(removal.get(), 0);
}

TEST(RemovalThreads, AChildThatIsStartedAsItIsTakenIsLetGoOf) {
  ntoshost::setChildrenStart(false);
  {
    tPnpBus bus;
    ASSERT_EQ(bus.create(1, 5, bus.handler), 0);
    ntoshost::enumerateDevice(bus.physical);
    DEVICE_OBJECT* const child = ntoshost::childOf(bus.physical, 0);
    EXPECT_EQ(bus.take(5), 0);
    EXPECT_EQ(ntoshost::startDevice(child), STATUS_SUCCESS);
    ntoshost::waitForPnp();
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
  }
  ntoshost::setChildrenStart(true);
}

TEST(RemovalThreads, RelationsThatFailAreAskedForAgain) {
  ntoshost::setTimeRate(1'000);
  {
    tLowerFilter filter("oxdiagfilter");
    tPnpBus bus(ntoshost::PnpMode::Worker, "oxdiagbus", &filter);
    ASSERT_NE(bus.addStarted(1, 5), nullptr);
    filter.failNext(IRP_MN_QUERY_DEVICE_RELATIONS);
    std::future<i32> removal = takeAside(bus, 5);
    EXPECT_EQ(removal.wait_for(kLongEnough), std::future_status::ready);
    if (isWaiting(removal)) ntoshost::enumerateDevice(bus.physical);
    EXPECT_EQ(removal.get(), 0);
    ntoshost::waitForPnp();
    EXPECT_EQ(ntoshost::childrenOf(bus.physical), 0u);
  }
  ntoshost::setTimeRate(1);
}
