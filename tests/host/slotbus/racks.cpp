#include "slotbusSupport.h"

using namespace nSLOTBUS100;
using nOXDIAG100::tStatus2;

namespace {

tDevice makeDevice(u32 slot, u64 instance) {
  tDevice device;
  device.slot = slot;
  device.instance = instance;
  return device;
}

i32 add(tRack& rack, u32 slot, u64 instance) {
  tStatus2 status;
  rack.add(makeDevice(slot, instance), status);
  return status.getCode();
}

}  // namespace

TEST(SlotbusRack, DevicesStayInTheOrderInWhichTheyCame) {
  tRack rack;
  EXPECT_EQ(add(rack, 9, 1), 0);
  EXPECT_EQ(add(rack, 3, 2), 0);
  ASSERT_EQ(rack.getCount(), 2U);
  EXPECT_EQ(rack.getDevice(0).slot, 9U);
  EXPECT_EQ(rack.getDevice(1).slot, 3U);
}

TEST(SlotbusRack, DevicesAreFoundBySlotAndByInstance) {
  tRack rack;
  add(rack, 9, 100);
  add(rack, 3, 200);
  EXPECT_EQ(rack.findSlot(3), &rack.getDevice(1));
  EXPECT_EQ(rack.findInstance(100), &rack.getDevice(0));
  EXPECT_EQ(rack.findSlot(100), nullptr);
  EXPECT_EQ(rack.findInstance(9), nullptr);
}

TEST(SlotbusRack, ATakenSlotIsRefused) {
  tRack rack;
  add(rack, 9, 1);
  EXPECT_EQ(add(rack, 9, 2), kStatusSlotTaken);
  EXPECT_EQ(rack.getCount(), 1U);
}

TEST(SlotbusRack, ATakenInstanceIsRefused) {
  tRack rack;
  add(rack, 9, 1);
  EXPECT_EQ(add(rack, 8, 1), kStatusInstanceTaken);
  EXPECT_EQ(rack.getCount(), 1U);
}

TEST(SlotbusRack, OfATakenSlotAndInstanceTheSlotIsTold) {
  tRack rack;
  add(rack, 9, 1);
  EXPECT_EQ(add(rack, 9, 1), kStatusSlotTaken);
}

TEST(SlotbusRack, InstancesDifferInTheirHighHalf) {
  tRack rack;
  EXPECT_EQ(add(rack, 1, 1), 0);
  EXPECT_EQ(add(rack, 2, 0x100000001), 0);
}

TEST(SlotbusRack, SlotsOutOfRangeAreRefused) {
  tRack rack;
  EXPECT_EQ(add(rack, 0, 1), kStatusSlotOutOfRange);
  EXPECT_EQ(add(rack, 100, 1), kStatusSlotOutOfRange);
  EXPECT_EQ(add(rack, 0xFFFFFFFF, 1), kStatusSlotOutOfRange);
  EXPECT_EQ(rack.getCount(), 0U);
}

TEST(SlotbusRack, EverySlotHasRoom) {
  tRack rack;
  for (u32 slot = kFirstSlot; slot <= kLastSlot; ++slot) EXPECT_EQ(add(rack, slot, slot), 0);
  EXPECT_EQ(rack.getCount(), 99U);
  EXPECT_EQ(add(rack, kLastSlot, 1000), kStatusSlotTaken);
}

TEST(SlotbusRack, AnErrorOnEntryAddsNothing) {
  tRack rack;
  tStatus2 status(-5);
  rack.add(makeDevice(1, 1), status);
  EXPECT_EQ(status.getCode(), -5);
  EXPECT_EQ(rack.getCount(), 0U);
}
