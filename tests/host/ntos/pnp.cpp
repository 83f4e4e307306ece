// The PnP manager's tree and what it does with it.

#include <gtest/gtest.h>

#include "narrowText.h"
#include "testBus.h"

using ntoshost::DeviceState;

namespace {

class Pnp : public BusTest {};

TEST_F(Pnp, ARootDeviceIsNamedAndPresent) {
  addBus();
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  ASSERT_TRUE(ntoshost::findDevice(m_bus, *record));
  EXPECT_EQ(record->state, DeviceState::Present);
  EXPECT_EQ(record->driver, m_driver);
  EXPECT_EQ(record->parent, nullptr);
  EXPECT_EQ(narrow(record->deviceId), "ROOT\\TESTBUS");
  EXPECT_EQ(narrow(record->instanceId), "0000");
  EXPECT_TRUE(record->hasCapabilities);
  EXPECT_EQ(record->capabilities.DeviceState[PowerSystemWorking], PowerDeviceD0);
  EXPECT_EQ(ntoshost::childOf(nullptr, 0), m_bus);
}

TEST_F(Pnp, AFailedAddDeviceLeavesNothing) {
  m_addStatus = STATUS_INSUFFICIENT_RESOURCES;
  DEVICE_OBJECT* bus = nullptr;
  EXPECT_EQ(ntoshost::addRootDevice(m_driver, "TESTBUS", &bus), STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_EQ(bus, nullptr);
  EXPECT_EQ(ntoshost::countDevices().devices, 0u);
}

TEST_F(Pnp, AStartedBusListsItsChildrenAndTheyStart) {
  TestChild& one = plug("one");
  TestChild& two = plug("two");
  startBus();
  EXPECT_EQ(takeLog(), "bus start, one start, two start");
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 2u);
  EXPECT_EQ(ntoshost::childOf(m_bus, 0), one.device);
  EXPECT_EQ(ntoshost::childOf(m_bus, 1), two.device);
  EXPECT_EQ(ntoshost::childOf(m_bus, 2), nullptr);
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
  EXPECT_EQ(ntoshost::referencesOn(one.device), 1u);
}

TEST_F(Pnp, AChildIsAskedWhoItIs) {
  TestChild const& one = plug("one");
  startBus();
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  ASSERT_TRUE(ntoshost::findDevice(one.device, *record));
  EXPECT_EQ(record->parent, m_bus);
  EXPECT_EQ(narrow(record->deviceId), "TEST\\one");
  EXPECT_EQ(narrow(record->hardwareIds), "TEST\\one");
  EXPECT_EQ(narrow(record->hardwareIds + 9), "TEST\\any");
  EXPECT_EQ(narrow(record->hardwareIds + 18), "");
  EXPECT_EQ(narrow(record->compatibleIds), "");
  EXPECT_EQ(narrow(record->description), "");
  EXPECT_TRUE(record->hasCapabilities);
  EXPECT_FALSE(record->hasBusInformation);
}

TEST_F(Pnp, ChildrenCanWaitForTheirStart) {
  ntoshost::setChildrenStart(false);
  TestChild const& one = plug("one");
  startBus();
  EXPECT_EQ(stateOf(one.device), DeviceState::Present);
  EXPECT_EQ(takeLog(), "bus start");
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(takeLog(), "one start");
}

TEST_F(Pnp, AChildThatDoesNotStartIsRemovedAndFailed) {
  TestChild& one = plug("one");
  one.start = STATUS_NO_SUCH_FILE;
  startBus();
  EXPECT_EQ(takeLog(), "bus start, one start, one remove");
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  ASSERT_TRUE(ntoshost::findDevice(one.device, *record));
  EXPECT_EQ(record->state, DeviceState::Failed);
  EXPECT_EQ(record->failure, STATUS_NO_SUCH_FILE);
  one.start = STATUS_SUCCESS;
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
}

TEST_F(Pnp, AChildWithoutAnIdIsFailed) {
  TestChild& one = plug("one");
  one.id = STATUS_UNSUCCESSFUL;
  startBus();
  EXPECT_EQ(stateOf(one.device), DeviceState::Failed);
  EXPECT_EQ(takeLog(), "bus start");
}

TEST_F(Pnp, InvalidatedRelationsAreAskedForLater) {
  startBus();
  TestChild const& one = plug("one");
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 1u);
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
  EXPECT_EQ(ntoshost::runPnpWork(), 0u);
}

TEST_F(Pnp, OtherRelationsAreNotAskedFor) {
  startBus();
  IoInvalidateDeviceRelations(m_bus, PowerRelations);
  EXPECT_EQ(ntoshost::runPnpWork(), 0u);
}

TEST_F(Pnp, AVanishedChildGetsASurpriseAndARemove) {
  TestChild& one = plug("one");
  startBus();
  takeLog();
  unplug(one);
  ntoshost::runPnpWork();
  EXPECT_EQ(takeLog(), "one surprise, one remove");
  EXPECT_TRUE(one.isDeleted);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
  EXPECT_EQ(ntoshost::countDevices().devices, 2u);
}

TEST_F(Pnp, AVanishedChildThatNeverRanIsOnlyRemoved) {
  ntoshost::setChildrenStart(false);
  TestChild& one = plug("one");
  startBus();
  takeLog();
  unplug(one);
  ntoshost::runPnpWork();
  EXPECT_EQ(takeLog(), "one remove");
}

TEST_F(Pnp, ARemoveWaitsForTheLastHandle) {
  TestChild& one = plug("one");
  startBus();
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(one.device, &file), STATUS_SUCCESS);
  takeLog();
  unplug(one);
  ntoshost::runPnpWork();
  EXPECT_EQ(takeLog(), "one surprise");
  EXPECT_EQ(stateOf(one.device), DeviceState::SurpriseRemoved);
  FILE_OBJECT* second = nullptr;
  EXPECT_EQ(ntoshost::openDevice(one.device, &second), STATUS_NO_SUCH_DEVICE);
  ntoshost::closeDevice(file);
  EXPECT_EQ(takeLog(), "one remove");
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
}

TEST_F(Pnp, ABusThatGoesTakesItsChildrenAlong) {
  plug("one");
  plug("two");
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::removeRootDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one remove?, two remove?, bus remove?, one remove, two remove, bus remove");
  EXPECT_EQ(ntoshost::countDevices().devices, 0u);
  EXPECT_EQ(ntoshost::removeRootDevice(m_bus), STATUS_NO_SUCH_DEVICE);
}

TEST_F(Pnp, OneRefusalKeepsThemAll) {
  plug("one");
  TestChild& two = plug("two");
  startBus();
  takeLog();
  two.queryRemove = STATUS_UNSUCCESSFUL;
  EXPECT_EQ(ntoshost::removeDevice(m_bus), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(takeLog(), "one remove?, two remove?, one keep, two keep");
  EXPECT_EQ(stateOf(m_bus), DeviceState::Started);
  EXPECT_EQ(stateOf(two.device), DeviceState::Started);
}

TEST_F(Pnp, AnOpenDeviceIsNotAsked) {
  TestChild const& one = plug("one");
  startBus();
  takeLog();
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(one.device, &file), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::queryRemoveDevice(m_bus), STATUS_DEVICE_BUSY);
  EXPECT_EQ(takeLog(), "");
  ntoshost::closeDevice(file);
  EXPECT_EQ(ntoshost::openDevice(one.device, &file), STATUS_SUCCESS);
  ntoshost::closeDevice(file);
}

TEST_F(Pnp, AQueryIsCancelledTopDown) {
  TestChild const& one = plug("one");
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::queryRemoveDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), DeviceState::RemovePending);
  FILE_OBJECT* file = nullptr;
  EXPECT_EQ(ntoshost::openDevice(one.device, &file), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::cancelRemoveDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one remove?, bus remove?, bus keep, one keep");
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
  EXPECT_EQ(ntoshost::cancelRemoveDevice(m_bus), STATUS_INVALID_DEVICE_REQUEST);
}

TEST_F(Pnp, ARemovedChildStaysWhileItIsListed) {
  TestChild& one = plug("one");
  startBus();
  EXPECT_EQ(ntoshost::queryRemoveDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::removeDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "bus start, one start, one remove?, one remove");
  EXPECT_EQ(stateOf(one.device), DeviceState::Present);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::removeDevice(one.device), STATUS_SUCCESS);
  takeLog();
  unplug(one);
  ntoshost::runPnpWork();
  EXPECT_EQ(takeLog(), "one remove");
  EXPECT_TRUE(one.isDeleted);
}

TEST_F(Pnp, ASurprisedBusGoesWithAllBelow) {
  plug("one");
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one surprise, bus surprise, one remove, bus remove");
  EXPECT_EQ(ntoshost::childrenOf(nullptr), 0u);
}

TEST_F(Pnp, ASurprisedBusWaitsForHandlesBelow) {
  TestChild const& one = plug("one");
  startBus();
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(one.device, &file), STATUS_SUCCESS);
  takeLog();
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one surprise, bus surprise");
  EXPECT_EQ(ntoshost::removeDevice(m_bus), STATUS_DEVICE_BUSY);
  ntoshost::closeDevice(file);
  EXPECT_EQ(takeLog(), "one remove, bus remove");
  EXPECT_EQ(ntoshost::childrenOf(nullptr), 0u);
}

TEST_F(Pnp, AChildIsStoppedAndStartedAgain) {
  TestChild const& one = plug("one");
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::queryStopDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), DeviceState::StopPending);
  EXPECT_EQ(ntoshost::cancelStopDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
  EXPECT_EQ(ntoshost::stopDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), DeviceState::Stopped);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one stop?, one go on, one stop?, one stop, one start");
}

TEST_F(Pnp, ABusThatDoesNotStartAgainIsGoneWithAllBelow) {
  plug("one");
  startBus();
  EXPECT_EQ(ntoshost::stopDevice(m_bus), STATUS_SUCCESS);
  takeLog();
  ntoshost::failNth(ntoshost::kFaultRequest, 1);
  EXPECT_EQ(ntoshost::startDevice(m_bus), STATUS_INSUFFICIENT_RESOURCES);
  ntoshost::clearFaults();
  EXPECT_EQ(takeLog(), "one surprise, bus surprise, one remove, bus remove");
  EXPECT_EQ(stateOf(m_bus), DeviceState::Failed);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
  plug("two");
  EXPECT_EQ(ntoshost::startDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "bus start, two start");
}

TEST_F(Pnp, ADriverIsChosenForARootDeviceWithoutOne) {
  ASSERT_TRUE(ntoshost::assignDriver(L"root\\testbus", m_driver));
  ASSERT_EQ(ntoshost::addRootDevice(nullptr, "TESTBUS", &m_bus), STATUS_SUCCESS);
  EXPECT_EQ(m_function, nullptr);
  EXPECT_EQ(ntoshost::startDevice(m_bus), STATUS_SUCCESS);
  EXPECT_EQ(m_bus->AttachedDevice, m_function);
  EXPECT_EQ(takeLog(), "bus start");
}

TEST_F(Pnp, RootDevicesOfOneNameAreNumbered) {
  addBus();
  DEVICE_OBJECT* second = nullptr;
  ASSERT_EQ(ntoshost::addRootDevice(nullptr, "TESTBUS", &second), STATUS_SUCCESS);
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  ASSERT_TRUE(ntoshost::findDevice(second, *record));
  EXPECT_EQ(narrow(record->instanceId), "0001");
  EXPECT_EQ(record->driver, nullptr);
  EXPECT_EQ(ntoshost::removeRootDevice(second), STATUS_SUCCESS);
}

TEST_F(Pnp, ARefusedStopIsCancelled) {
  TestChild& one = plug("one");
  one.queryStop = STATUS_UNSUCCESSFUL;
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::stopDevice(one.device), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(takeLog(), "one stop?, one go on");
  EXPECT_EQ(stateOf(one.device), DeviceState::Started);
}

TEST_F(Pnp, TheMachineGoesToSleepFromBelowAndWakesFromAbove) {
  plug("one");
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::setSystemPower(PowerSystemSleeping3), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one power? 4, bus power? 4, one power 4, bus power 4");
  EXPECT_EQ(ntoshost::setSystemPower(PowerSystemWorking), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "bus power 1, one power 1");
}

TEST_F(Pnp, OneRefusalKeepsTheMachineAwake) {
  TestChild& one = plug("one");
  one.queryPower = STATUS_UNSUCCESSFUL;
  startBus();
  takeLog();
  EXPECT_EQ(ntoshost::setSystemPower(PowerSystemSleeping3), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(takeLog(), "one power? 4, bus power 1, one power 1");
}

TEST_F(Pnp, OneDeviceGetsAPowerRequest) {
  TestChild const& one = plug("one");
  startBus();
  takeLog();
  POWER_STATE state;
  state.DeviceState = PowerDeviceD3;
  EXPECT_EQ(ntoshost::queryPower(one.device, DevicePowerState, state), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::setPower(one.device, DevicePowerState, state), STATUS_SUCCESS);
  EXPECT_EQ(takeLog(), "one power? 4, one power 4");
}

TEST_F(Pnp, TheLastPowerStateIsKept) {
  DEVICE_OBJECT* const device = makeDevice();
  POWER_STATE state;
  state.DeviceState = PowerDeviceD0;
  EXPECT_EQ(PoSetPowerState(device, DevicePowerState, state).DeviceState, PowerDeviceUnspecified);
  state.DeviceState = PowerDeviceD3;
  EXPECT_EQ(PoSetPowerState(device, DevicePowerState, state).DeviceState, PowerDeviceD0);
  EXPECT_EQ(ntoshost::powerStateOf(device, DevicePowerState).DeviceState, PowerDeviceD3);
  EXPECT_EQ(ntoshost::powerStateOf(device, SystemPowerState).SystemState, PowerSystemUnspecified);
  IoDeleteDevice(device);
}

TEST_F(Pnp, WhatIsNotInTheTreeIsNoDevice) {
  DEVICE_OBJECT* const device = makeDevice();
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  EXPECT_FALSE(ntoshost::findDevice(device, *record));
  EXPECT_EQ(ntoshost::startDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::enumerateDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::queryRemoveDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::cancelRemoveDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::removeDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::removeRootDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::stopDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::queryStopDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::cancelStopDevice(device), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::queryPower(device, SystemPowerState, {}), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(ntoshost::childrenOf(device), 0u);
  IoDeleteDevice(device);
}

TEST_F(Pnp, RelationsAreToldWithoutTheirReferences) {
  TestChild const& one = plug("one");
  startBus();
  DEVICE_OBJECT* devices[2] = {};
  u64 count = 0;
  EXPECT_EQ(ntoshost::queryRelations(m_bus, BusRelations, devices, 2, &count), STATUS_SUCCESS);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(devices[0], one.device);
  EXPECT_EQ(ntoshost::referencesOn(one.device), 1u);
}

// A function device that passes everything on and goes with its physical device.
NTSTATUS addPassingDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
  DEVICE_OBJECT* device = nullptr;
  IoCreateDevice(driver, 0, nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device);
  IoAttachDeviceToDeviceStack(device, physical);
  device->Flags &= ~DO_DEVICE_INITIALIZING;
  setDispatch(device, [physical](DEVICE_OBJECT* self, IRP* request) {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    bool const isEnd =
        location.MajorFunction == IRP_MJ_PNP && location.MinorFunction == IRP_MN_REMOVE_DEVICE;
    IoSkipCurrentIrpStackLocation(request);
    NTSTATUS const status = IoCallDriver(physical, request);
    if (isEnd) IoDetachDevice(physical);
    if (isEnd) IoDeleteDevice(self);
    return status;
  });
  return STATUS_SUCCESS;
}

TEST_F(Pnp, AnAssignedDriverServesTheChild) {
  TestChild& one = plug("one");
  TestChild const& two = plug("two");
  ASSERT_TRUE(ntoshost::assignDriver(L"test\\ONE", m_driver));
  addBus();
  m_driver->DriverExtension->AddDevice = addPassingDevice;
  EXPECT_EQ(ntoshost::startDevice(m_bus), STATUS_SUCCESS);
  EXPECT_NE(one.device->AttachedDevice, nullptr);
  EXPECT_EQ(two.device->AttachedDevice, nullptr);
  auto const record = std::make_unique<ntoshost::DeviceRecord>();
  ASSERT_TRUE(ntoshost::findDevice(one.device, *record));
  EXPECT_EQ(record->driver, m_driver);
  ASSERT_TRUE(ntoshost::assignDriver(L"TEST\\one", nullptr));
  EXPECT_EQ(ntoshost::removeDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(one.device->AttachedDevice, nullptr);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(one.device->AttachedDevice, nullptr);
}

TEST_F(Pnp, AChildThatNeedsADriverWaitsForOne) {
  TestChild& one = plug("one");
  one.isRaw = false;
  startBus();
  EXPECT_EQ(takeLog(), "bus start");
  EXPECT_EQ(stateOf(one.device), ntoshost::DeviceState::Present);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_INVALID_DEVICE_REQUEST);
  FILE_OBJECT* file = nullptr;
  EXPECT_EQ(ntoshost::openDevice(one.device, &file), STATUS_NO_SUCH_DEVICE);
  ASSERT_TRUE(ntoshost::assignDriver(L"TEST\\one", m_driver));
  m_driver->DriverExtension->AddDevice = addPassingDevice;
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(stateOf(one.device), ntoshost::DeviceState::Started);
}

TEST_F(Pnp, AChildWithoutCapabilitiesIsNotRaw) {
  TestChild& one = plug("one");
  one.capabilities = STATUS_NOT_SUPPORTED;
  startBus();
  EXPECT_EQ(stateOf(one.device), ntoshost::DeviceState::Present);
}

TEST_F(Pnp, TheNullDriverLetsAChildStartBare) {
  TestChild& one = plug("one");
  one.isRaw = false;
  ASSERT_TRUE(ntoshost::assignNullDriver(L"test\\ANY"));
  startBus();
  EXPECT_EQ(stateOf(one.device), ntoshost::DeviceState::Started);
  EXPECT_EQ(one.device->AttachedDevice, nullptr);
  ASSERT_TRUE(ntoshost::assignDriver(L"TEST\\any", nullptr));
  EXPECT_EQ(ntoshost::removeDevice(one.device), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::startDevice(one.device), STATUS_INVALID_DEVICE_REQUEST);
}

TEST_F(Pnp, AVanishedChildThatWaitsIsRemovedOnly) {
  TestChild& one = plug("one");
  one.isRaw = false;
  startBus();
  takeLog();
  unplug(one);
  EXPECT_EQ(ntoshost::runPnpWork(), 1u);
  EXPECT_EQ(takeLog(), "one remove");
}

TEST_F(Pnp, ADriverWithDevicesInTheTreeStays) {
  startBus();
  EXPECT_EQ(ntoshost::unloadDriver(m_driver), STATUS_DEVICE_BUSY);
}

// One step of a bus' whole life fails; nothing may be left, and the next life is whole.
TEST_F(Pnp, ItSurvivesEachFailedCall) {
  constexpr u32 kKinds = ntoshost::kFaultMemory | ntoshost::kFaultDevice | ntoshost::kFaultRequest;
  u64 const failures = ntoshost::failEachCall(kKinds, [&](u64 n) {
    ntoshost::clearFaults();
    m_children.clear();
    TestChild& one = plug("one");
    ntoshost::failNth(kKinds, n);
    DEVICE_OBJECT* bus = nullptr;
    if (NT_SUCCESS(ntoshost::addRootDevice(m_driver, "TESTBUS", &bus))) {
      ntoshost::startDevice(bus);
      one.isListed = false;
      ntoshost::enumerateDevice(bus);
      ntoshost::surpriseRemoveDevice(bus);
    }
    remove(one);
    EXPECT_EQ(ntoshost::countDevices().devices, 0u);
  });
  EXPECT_GT(failures, 20u);
}

}  // namespace
