// The rack as a bus of the system: its devices, their requests, and how they come and go.

#include "slotbus/rackMachine.h"

using namespace nSLOTBUS100;

namespace {

class SlotbusBus : public tSlotbusMachine {};

std::string narrow(wchar_t const* text) {
  std::string narrowed;
  for (; *text != L'\0'; ++text) narrowed += static_cast<char>(*text);
  return narrowed;
}

}  // namespace

TEST_F(SlotbusBus, EveryGoodLineIsADevice) {
  rack.text += "10 | 300 | | no id\n";
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  ASSERT_EQ(count(), 3U);
  ntoshost::DeviceRecord record = {};
  ASSERT_TRUE(ntoshost::findDevice(slot(0), record));
  EXPECT_EQ(record.state, ntoshost::DeviceState::Started);
  EXPECT_EQ(narrow(record.deviceId), "RACK\\A-1");
  EXPECT_EQ(narrow(record.hardwareIds + 9), "RACK\\A");
  EXPECT_EQ(narrow(record.instanceId), "00000064");
  EXPECT_EQ(narrow(record.description), "first");
  EXPECT_EQ(narrow(record.location), "Slot 04");
  EXPECT_EQ(record.capabilities.UINumber, 4U);
}

TEST_F(SlotbusBus, AnInstanceAbove32BitsHasSixteenDigits) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  ntoshost::DeviceRecord record = {};
  ASSERT_TRUE(ntoshost::findDevice(slot(2), record));
  EXPECT_EQ(narrow(record.instanceId), "0000000100000000");
}

TEST_F(SlotbusBus, ADeviceTellsItsLine) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  tSlotLine line;
  EXPECT_EQ(tellLine(slot(1), line), STATUS_SUCCESS);
  EXPECT_EQ(line.lineNumber, 2U);
  EXPECT_EQ(line.slot, 7U);
  EXPECT_EQ(line.instance, 200U);
  EXPECT_STREQ(line.description, "second");
}

TEST_F(SlotbusBus, ABadAddressOrLengthIsRefused) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  tSlotLine line;
  ntoshost::DeviceControl control;
  control.code = kControlTellLine;
  control.output = reinterpret_cast<void*>(8);
  control.outputLength = sizeof(line);
  EXPECT_EQ(ntoshost::controlDevice(slot(0), control), STATUS_UNSUCCESSFUL);
  control.output = &line;
  control.outputLength = sizeof(line) - 1;
  EXPECT_EQ(ntoshost::controlDevice(slot(0), control), STATUS_UNSUCCESSFUL);
  EXPECT_EQ(control.information, 0U);
}

TEST_F(SlotbusBus, AnUnknownCodeIsRefused) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  ntoshost::DeviceControl control;
  control.code = kControlCountDevices;
  EXPECT_EQ(ntoshost::controlDevice(slot(0), control), STATUS_UNSUCCESSFUL);
  control.code = kControlTellLine;
  EXPECT_EQ(ntoshost::controlDevice(bus, control), STATUS_UNSUCCESSFUL);
}

TEST_F(SlotbusBus, TheBusCountsItsDevices) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  tBusCount devices = {};
  ntoshost::DeviceControl control;
  control.code = kControlCountDevices;
  control.output = &devices;
  control.outputLength = sizeof(devices);
  EXPECT_EQ(ntoshost::controlDevice(bus, control), STATUS_SUCCESS);
  EXPECT_EQ(control.information, sizeof(devices));
  EXPECT_EQ(devices.devices, 3U);
  EXPECT_EQ(devices.failures, 0U);
}

TEST_F(SlotbusBus, AnySlotMayGoBySurpriseAndComeBack) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  for (u64 index = 0; index < 3; ++index) {
    EXPECT_EQ(ntoshost::surpriseRemoveDevice(slot(index)), STATUS_SUCCESS);
    EXPECT_EQ(count(), 3U);
    EXPECT_EQ(ntoshost::startDevice(slot(index)), STATUS_SUCCESS);
    tSlotLine line;
    EXPECT_EQ(tellLine(slot(index), line), STATUS_SUCCESS);
    EXPECT_EQ(line.lineNumber, index + 1);
  }
}

TEST_F(SlotbusBus, ADeviceThatSomebodyRefersToOutlivesTheBus) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  DEVICE_OBJECT* const device = slot(0);
  ObfReferenceObject(device);
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(bus), STATUS_SUCCESS);
  bus = nullptr;
  ObfDereferenceObject(device);
}

TEST_F(SlotbusBus, ABusWithUnstartedDevicesMayGoBySurprise) {
  ntoshost::setChildrenStart(false);
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  ASSERT_EQ(count(), 3U);
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(bus), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::countDevices().devices, 0U);
  ntoshost::setChildrenStart(true);
  bus = nullptr;
}

TEST_F(SlotbusBus, TheBusGoesWithAHandleOpen) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(bus, &file), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::queryRemoveDevice(bus), STATUS_DEVICE_BUSY);
  ntoshost::surpriseRemoveDevice(bus);
  tBusCount devices = {};
  ntoshost::DeviceControl control;
  control.code = kControlCountDevices;
  control.output = &devices;
  control.outputLength = sizeof(devices);
  EXPECT_EQ(ntoshost::controlDevice(file, control), STATUS_DELETE_PENDING);
  ntoshost::closeDevice(file);
  bus = nullptr;
}

TEST_F(SlotbusBus, ARestartedBusKeepsItsDevices) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  DEVICE_OBJECT* const first = slot(0);
  EXPECT_EQ(ntoshost::stopDevice(bus), STATUS_SUCCESS);
  EXPECT_EQ(start(), STATUS_SUCCESS);
  EXPECT_EQ(count(), 3U);
  EXPECT_EQ(slot(0), first);
  EXPECT_EQ(rack.reads, 1);
}

TEST_F(SlotbusBus, ABusThatComesBackReadsItsRackAnew) {
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::removeDevice(bus), STATUS_SUCCESS);
  rack.text = "1 | 1 | RACK\\D | other\n";
  ASSERT_EQ(start(), STATUS_SUCCESS);
  EXPECT_EQ(rack.reads, 2);
  ASSERT_EQ(count(), 1U);
  tSlotLine line;
  EXPECT_EQ(tellLine(slot(0), line), STATUS_SUCCESS);
  EXPECT_STREQ(line.description, "other");
}

TEST_F(SlotbusBus, ARefusedRackIsABusWithoutDevices) {
  rack.text = "\xFF\xFEx";
  EXPECT_EQ(plugIn(), STATUS_SUCCESS);
  EXPECT_EQ(count(), 0U);
}

TEST_F(SlotbusBus, ALineThatUsesEveryLimitIsADevice) {
  std::string ids(201, 'A');
  for (int index = 0; index < 3; ++index) ids += "," + std::string(201, 'B');
  ids += "," + std::string(201, 'C');
  rack.text = "99 | 0xFFFFFFFFFFFFFFFF | " + ids + " | " + std::string(120, 'd') + "\n";
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  ASSERT_EQ(count(), 1U);
  tSlotLine line;
  EXPECT_EQ(tellLine(slot(0), line), STATUS_SUCCESS);
  EXPECT_EQ(std::string(line.description), std::string(120, 'd'));
}

TEST_F(SlotbusBus, AHundredRoundsLeaveNoBlockAndNoDevice) {
  for (u64 round = 0; round < 100; ++round) {
    ASSERT_EQ(plugIn(), STATUS_SUCCESS);
    tSlotLine line;
    EXPECT_EQ(tellLine(slot(round % 3), line), STATUS_SUCCESS);
    if (round % 2 == 0) ntoshost::surpriseRemoveDevice(slot(round % 3));
    bool const goes = round % 5 == 0;
    EXPECT_EQ(goes ? ntoshost::removeDevice(bus) : STATUS_SUCCESS, STATUS_SUCCESS);
    bool const comesBack = round % 10 == 0;
    EXPECT_EQ(comesBack ? start() : STATUS_SUCCESS, STATUS_SUCCESS);
    pullOut();
    ASSERT_EQ(ntoshost::countDevices().devices, 0U);
  }
}

TEST_F(SlotbusBus, NothingIsLeftWhenAnyAllocationFails) {
  u64 const failures = ntoshost::failEachCall(
      ntoshost::kFaultMemory | ntoshost::kFaultDevice | ntoshost::kFaultRequest, [&](u64) {
        plugIn();
        ntoshost::clearFaults();
        if (bus != nullptr) pullOut();
        EXPECT_EQ(ntoshost::countDevices().devices, 0U);
      });
  EXPECT_GT(failures, 20U);
}
