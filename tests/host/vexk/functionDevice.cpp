// The platform's own device of a stack under exhausted memory, slow devices below it and requests
// of other threads.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "ntoshost/executive.h"
#include "support/tFunctionStack.h"
#include "vexk/dispatch.h"
#include "vexk/module.h"
#include "vexk/sync.h"

namespace {

constexpr auto kMoment = std::chrono::milliseconds(50);
constexpr u32 kCode = ntosControlCode(0x8123, 0x801, METHOD_NEITHER, FILE_ANY_ACCESS);

// A component whose device controls last until the test lets them go.
class tSlowComponent : public tRecordingComponent {
 public:
  void handleDeviceControl(u32, void*, u32, void*, u32, u64* information, i32*) override {
    ++running;
    while (!isOpen) std::this_thread::yield();
    if (kept != nullptr) {
      EXPECT_EQ(kept->acquire(kSyncWaitForever), 0);
    }
    EXPECT_FALSE(isReleased);
    *information = 1;
    --running;
  }
  void stop(bool) override { isStopped = true; }
  void release() override { isReleased = true; }

  void waitUntilRunning(int count) const {
    while (running != count) std::this_thread::yield();
  }

  std::atomic<int> running = 0;
  std::atomic<bool> isOpen = false;
  iSync* kept = nullptr;  // a lock that a device control does not give back
  std::atomic<bool> isStopped = false;
  std::atomic<bool> isReleased = false;
};

NTSTATUS dispatchAll(DEVICE_OBJECT* device, IRP* request) {
  u8 const major = IoGetCurrentIrpStackLocation(request)->MajorFunction;
  if (major == IRP_MJ_PNP) return vexDispatchPnp(device, request);
  if (major == IRP_MJ_POWER) return vexDispatchPower(device, request);
  return vexDispatch(device, request);
}

NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical);

NTSTATUS enter(DRIVER_OBJECT* driver, UNICODE_STRING*) {
  for (DRIVER_DISPATCH*& dispatch : driver->MajorFunction) dispatch = dispatchAll;
  driver->DriverExtension->AddDevice = addDevice;
  driver->DriverUnload = [](DRIVER_OBJECT*) {};
  return STATUS_SUCCESS;
}

iDeviceComponent* added = nullptr;

NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
  return vexAddFunctionDevice(
      {driver, physical, FILE_DEVICE_UNKNOWN, tModuleGUID::of(kStackBusType), 0}, *added);
}

// A driver with one root device of the executive's PnP manager.
class FunctionDevice : public testing::Test {
 protected:
  void SetUp() override {
    added = &component;
    ASSERT_EQ(ntoshost::loadDriver("function", enter, &driver), STATUS_SUCCESS);
  }
  void TearDown() override {
    EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_SUCCESS);
    ntoshost::requireNoDevices("the test");
    ntoshost::requireNoOutstanding("the test");
  }

  void plugIn() {
    ASSERT_EQ(ntoshost::addRootDevice(driver, "FUNCTION", &device), STATUS_SUCCESS);
    ASSERT_EQ(ntoshost::startDevice(device), STATUS_SUCCESS);
  }

  NTSTATUS control() const {
    ntoshost::DeviceControl request;
    request.code = kCode;
    return ntoshost::controlDevice(device, request);
  }

  tSlowComponent component;
  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* device = nullptr;
};

}  // namespace

TEST_F(FunctionDevice, NothingIsLeftWhenTheDeviceCannotBeMade) {
  constexpr u32 kKinds = ntoshost::kFaultMemory | ntoshost::kFaultDevice | ntoshost::kFaultAttach;
  u64 const failures = ntoshost::failEachCall(kKinds, [&](u64) {
    component.isStopped = component.isReleased = false;
    NTSTATUS const status = ntoshost::addRootDevice(driver, "FUNCTION", &device);
    ntoshost::clearFaults();
    if (status == STATUS_SUCCESS) {
      ntoshost::removeRootDevice(device);
    } else {
      EXPECT_FALSE(component.isStopped);
      EXPECT_FALSE(component.isReleased);
    }
    EXPECT_EQ(ntoshost::countDevices().devices, 0U);
  });
  EXPECT_GE(failures, 1U);
  EXPECT_TRUE(component.isReleased);
}

TEST_F(FunctionDevice, ADeviceThatCannotBeMadeIsToldWhy) {
  ntoshost::failNth(ntoshost::kFaultDevice, 2);  // the first is the physical one
  EXPECT_EQ(ntoshost::addRootDevice(driver, "FUNCTION", &device), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::failNth(ntoshost::kFaultAttach, 1);
  EXPECT_EQ(ntoshost::addRootDevice(driver, "FUNCTION", &device), STATUS_NO_SUCH_DEVICE);
  ntoshost::clearFaults();
}

TEST_F(FunctionDevice, NamesBelowItAreAsSecureAsTheDevice) {
  plugIn();
  DEVICE_OBJECT* const top = IoGetAttachedDeviceReference(device);
  EXPECT_EQ(top->Characteristics, FILE_DEVICE_SECURE_OPEN);
  ObfDereferenceObject(top);
  ntoshost::removeRootDevice(device);
}

TEST_F(FunctionDevice, IsOpenedByManyAtOnce) {
  plugIn();
  FILE_OBJECT* files[2] = {};
  for (FILE_OBJECT*& file : files) EXPECT_EQ(ntoshost::openDevice(device, &file), STATUS_SUCCESS);
  for (FILE_OBJECT* const file : files) ntoshost::closeDevice(file);
  ntoshost::removeRootDevice(device);
}

TEST_F(FunctionDevice, AControlThatKeepsALockIsNamedBeforeItReturns) {
  vexkInitialize();
  i32 status = 0;
  component.kept = syncOpen("nTEST::_kept", tSyncDescriptor{}, status);
  component.isOpen = true;
  plugIn();
  EXPECT_DEATH(control(),
               "\\[vexk\\] the request to a device of a driver returns while its thread holds the "
               "lock 'nTEST::_kept'\nntos: The driver \\\\Driver\\\\function returned from the "
               "device control request in 1 critical regions; it was called in 0\\.");
  ntoshost::removeRootDevice(device);
  syncClose(component.kept);
  vexkUnload();
}

TEST_F(FunctionDevice, TheRemovalWaitsForTheControlsThatRun) {
  plugIn();
  std::thread first([&] { EXPECT_EQ(control(), STATUS_SUCCESS); });
  std::thread second([&] { EXPECT_EQ(control(), STATUS_SUCCESS); });
  component.waitUntilRunning(2);
  std::thread removal([&] { EXPECT_EQ(ntoshost::removeRootDevice(device), STATUS_SUCCESS); });
  std::this_thread::sleep_for(kMoment);  // time to go on, if it can
  EXPECT_FALSE(component.isReleased);
  component.isOpen = true;
  first.join();
  second.join();
  removal.join();
  EXPECT_TRUE(component.isReleased);
}

TEST_F(FunctionDevice, SurpriseTellsTheComponentWhileControlsRun) {
  plugIn();
  std::thread user([&] { EXPECT_EQ(control(), STATUS_SUCCESS); });
  component.waitUntilRunning(1);
  std::thread removal([&] { ntoshost::surpriseRemoveDevice(device); });
  while (!component.isStopped) std::this_thread::yield();
  EXPECT_FALSE(component.isReleased);
  component.isOpen = true;
  user.join();
  removal.join();
  EXPECT_TRUE(component.isReleased);
}

TEST_F(FunctionDevice, AHandleKeepsASurprisedDeviceUntilItIsClosed) {
  plugIn();
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(device, &file), STATUS_SUCCESS);
  ntoshost::surpriseRemoveDevice(device);
  EXPECT_TRUE(component.isStopped);
  EXPECT_FALSE(component.isReleased);
  ntoshost::DeviceControl request;
  request.code = kCode;
  EXPECT_EQ(ntoshost::controlDevice(file, request), STATUS_DELETE_PENDING);
  ntoshost::closeDevice(file);
  EXPECT_TRUE(component.isReleased);
}

TEST_F(FunctionDevice, PowerGoesDownAndUp) {
  plugIn();
  component.isOpen = true;
  POWER_STATE state;
  state.DeviceState = PowerDeviceD3;
  EXPECT_EQ(ntoshost::queryPower(device, DevicePowerState, state), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::setPower(device, DevicePowerState, state), STATUS_SUCCESS);
  EXPECT_EQ(control(), STATUS_SUCCESS);
  ntoshost::removeRootDevice(device);
}

// The floor keeps the start; another thread completes it.
TEST(FunctionDeviceStart, WaitsForADeviceBelowThatTakesItsTime) {
  tFunctionStack stack;
  std::atomic<bool> isStarted = false;
  stack.keeps = true;
  std::thread starter([&] {
    EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
    isStarted = true;
  });
  while (!stack.hasKept()) std::this_thread::yield();
  std::this_thread::sleep_for(kMoment);  // time to go on, if it can
  EXPECT_FALSE(isStarted);
  stack.completeKept();
  starter.join();
  EXPECT_STREQ(stack.component.getCalls(), "FS");
  stack.keeps = false;
}
