// What the executive counts and remembers of children: references, characteristics, power.

#include <gtest/gtest.h>

#include "ntos/pnp.h"
#include "ntoshost/devices.h"
#include "ntoshost/pnp.h"
#include "support/tChildStack.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

class tRelations : public tDeviceRequest {
 public:
  tRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type)
      : tDeviceRequest(device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS) {
    location().Parameters.QueryDeviceRelations.Type = type;
  }
};

// An empty list of another driver's, or one that has a device with a reference on it.
DEVICE_RELATIONS* foreignList(DEVICE_OBJECT* device) {
  auto* const list = static_cast<DEVICE_RELATIONS*>(
      ExAllocatePoolWithTag(PagedPool, sizeof(DEVICE_RELATIONS), ntosPoolTag("test")));
  list->Count = device == nullptr ? 0 : 1;
  list->Objects[0] = device;
  if (device != nullptr) ObfReferenceObject(device);
  return list;
}

}  // namespace

TEST(DeviceCounts, BusRelationsReferToTheChildren) {
  tChildStack const stack;
  tRelations request(stack.bus(), BusRelations);
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 1u);
  request.freeRelations();
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 0u);
}

TEST(DeviceCounts, TargetRelationsReferToTheChild) {
  tChildStack const stack;
  tRelations request(stack.child, TargetDeviceRelation);
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 1u);
  request.freeRelations();
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 0u);
}

TEST(DeviceCounts, ReferencesOfOthersMoveWithTheirList) {
  tChildStack const stack;
  u64 const before = ntoshost::referencesOn(stack.floor());
  DEVICE_OBJECT* const brought[] = {nullptr, stack.floor()};
  for (DEVICE_OBJECT* device : brought) {
    tRelations request(stack.bus(), BusRelations);
    request.ioStatus().Information = reinterpret_cast<u64>(foreignList(device));
    EXPECT_EQ(request.send(), STATUS_SUCCESS);
    EXPECT_EQ(ntoshost::referencesOn(stack.floor()), before + (device == nullptr ? 0 : 1));
    EXPECT_EQ(ntoshost::referencesOn(stack.child), 1u);
    request.freeRelations();
  }
  EXPECT_EQ(ntoshost::referencesOn(stack.floor()), before);
}

TEST(DeviceCounts, ARemovalBySlotLeavesNoReference) {
  tChildStack stack;
  EXPECT_EQ(stack.countRelations(), 1u);
  i32 status = 0;
  stack.children->removeChild(7, status);
  EXPECT_EQ(ntoshost::referencesOn(stack.child), 0u);
}

TEST(DeviceCounts, AChildHasTheCharacteristicsOfABusDevice) {
  tChildStack const stack;
  EXPECT_EQ(stack.child->Characteristics, 0x180u);
}

TEST(DeviceCounts, TheSystemIsToldOfTheDevicesPower) {
  tChildStack const stack;
  DEVICE_POWER_STATE const states[] = {PowerDeviceD2, PowerDeviceD0, PowerDeviceD3};
  for (DEVICE_POWER_STATE state : states) {
    tDeviceRequest request(stack.child, IRP_MJ_POWER, IRP_MN_SET_POWER);
    request.location().Parameters.Power.Type = DevicePowerState;
    request.location().Parameters.Power.State.DeviceState = state;
    EXPECT_EQ(request.send(), STATUS_SUCCESS);
    EXPECT_EQ(ntoshost::powerStateOf(stack.child, DevicePowerState).DeviceState, state);
  }
}
