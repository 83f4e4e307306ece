// One rack in Wine's PnP manager: what its devices answer, and what they live through.

#include "conformance/harness.h"
#include "pnpDriver.h"
#include "slotLife.h"
#include "slotRequests.h"
#include "tLoadedRack.h"
#include "tSentRequest.h"

using namespace nSLOTBUS100;

namespace {

constexpr u32 kSlot4 = 3;  // the index of the device in slot 4

void expectText(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type, char const* wanted) {
  wchar_t* answer = nullptr;
  EXPECT_EQ(queryText(device, type, answer), STATUS_SUCCESS);
  EXPECT_TRUE(isText(answer, wanted));
  giveBack(answer);
}

void expectId(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type, char const* wanted) {
  wchar_t* answer = nullptr;
  EXPECT_EQ(queryId(device, type, answer), STATUS_SUCCESS);
  EXPECT_TRUE(isText(answer, wanted));
  giveBack(answer);
}

u32 slotOf(DEVICE_OBJECT* device) {
  tSlotLine line;
  return NT_SUCCESS(tellLine(device, line)) ? line.slot : 0;
}

}  // namespace

TEST(Pnp, TheRackIsABusWithADeviceForEveryGoodLine) {
  tLoadedRack rack(pnpEnumerator());
  EXPECT_STREQ(rack.load(), nullptr);
  u32 slot = 0;
  for (u32 index = 0; index < tLoadedRack::kSlots; ++index) {
    u32 const next = slotOf(rack.getSlot(index));
    EXPECT_LT(slot, next);
    slot = next;
  }
  EXPECT_STREQ(rack.unload(), nullptr);
}

TEST(Pnp, ADeviceTellsItsIdsTextsAndBus) {
  tLoadedRack rack(pnpEnumerator());
  ASSERT_TRUE(rack.load() == nullptr);
  DEVICE_OBJECT* const device = rack.getSlot(kSlot4);
  expectId(device, BusQueryDeviceID, "RACK\\DMM-75");
  expectId(device, BusQueryHardwareIDs, "RACK\\DMM-75");
  expectId(device, BusQueryInstanceID, "004f5c6c");
  expectText(device, DeviceTextDescription, "7.5 digit multimeter: output voltage");
  expectText(device, DeviceTextLocationInformation, "Slot 04");
  PNP_BUS_INFORMATION* information = nullptr;
  EXPECT_EQ(queryBusInformation(device, information), STATUS_SUCCESS);
  EXPECT_TRUE(information != nullptr && information->LegacyBusType == PNPBus);
  giveBack(information);
  EXPECT_STREQ(rack.unload(), nullptr);
}

TEST(Pnp, ADeviceTellsItsCapabilitiesAndLine) {
  tLoadedRack rack(pnpEnumerator());
  ASSERT_TRUE(rack.load() == nullptr);
  DEVICE_OBJECT* const device = rack.getSlot(kSlot4);
  DEVICE_CAPABILITIES capabilities;
  EXPECT_EQ(queryCapabilities(device, capabilities), STATUS_SUCCESS);
  EXPECT_EQ(capabilities.Flags, kDeviceCapabilityRemovable | kDeviceCapabilitySurpriseRemovalOK);
  EXPECT_EQ(capabilities.Address, u32{4});
  EXPECT_EQ(capabilities.UINumber, u32{4});
  tSlotLine line;
  EXPECT_EQ(tellLine(device, line), STATUS_SUCCESS);
  EXPECT_EQ(line.slot, u32{4});
  EXPECT_EQ(line.instance, u64{5201004});
  EXPECT_STREQ(line.description, "7.5 digit multimeter: output voltage");
  EXPECT_STREQ(rack.unload(), nullptr);
}

TEST(Pnp, UnknownAndShortControlsAreRefused) {
  tLoadedRack rack(pnpEnumerator());
  ASSERT_TRUE(rack.load() == nullptr);
  tSlotLine line;
  u64 given = 1;
  DEVICE_OBJECT* const device = rack.getSlot(kSlot4);
  EXPECT_EQ(sendControl(device, kControlCountDevices, &line, sizeof(line), given),
            STATUS_UNSUCCESSFUL);
  EXPECT_EQ(given, u64{0});
  EXPECT_EQ(sendControl(device, kControlTellLine, &line, sizeof(line) - 1, given),
            STATUS_UNSUCCESSFUL);
  tBusCount count = {};
  EXPECT_EQ(sendControl(rack.getBus(), kControlCountDevices, &count, sizeof(count), given),
            STATUS_SUCCESS);
  EXPECT_EQ(given, u64{sizeof(count)});
  EXPECT_EQ(count.devices, u32{tLoadedRack::kSlots});
  EXPECT_EQ(count.failures, u32{0});
  EXPECT_EQ(sendControl(rack.getBus(), kControlTellLine, &line, sizeof(line), given),
            STATUS_UNSUCCESSFUL);
  EXPECT_STREQ(rack.unload(), nullptr);
}

TEST(Pnp, DevicesLiveThroughStartPowerStopAndCancelledRemoval) {
  tLoadedRack rack(pnpEnumerator());
  ASSERT_TRUE(rack.load() == nullptr);
  for (u32 index = 0; index < tLoadedRack::kSlots; ++index) liveThrough(rack.getSlot(index));
  EXPECT_STREQ(rack.unload(), nullptr);
}

TEST(Pnp, TheBusStopsAndStartsAgainWithItsDevices) {
  tLoadedRack rack(pnpEnumerator());
  ASSERT_TRUE(rack.load() == nullptr);
  EXPECT_EQ(sendPnp(rack.getBus(), IRP_MN_QUERY_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(rack.getBus(), IRP_MN_STOP_DEVICE), STATUS_SUCCESS);
  tBusCount count = {};
  u64 given = 0;
  EXPECT_EQ(sendControl(rack.getBus(), kControlCountDevices, &count, sizeof(count), given),
            STATUS_DEVICE_NOT_READY);
  EXPECT_EQ(sendPnp(rack.getBus(), IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendControl(rack.getBus(), kControlCountDevices, &count, sizeof(count), given),
            STATUS_SUCCESS);
  EXPECT_EQ(count.devices, u32{tLoadedRack::kSlots});
  pnpEnumerator().settle();
  EXPECT_STREQ(rack.unload(), nullptr);
}
