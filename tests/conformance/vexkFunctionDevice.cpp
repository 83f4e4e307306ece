// The platform's own device of a stack: what it is, and its life.

#include "conformance/harness.h"
#include "ntos/io.h"
#include "ntos/pnp.h"
#include "support/tFunctionStack.h"
#include "vexk/iChildBus.h"
#include "vexk/statusCodes.h"

namespace {

bool isSameGUID(GUID const& a, GUID const& b) {
  return __builtin_memcmp(&a, &b, sizeof(GUID)) == 0;
}

class tNoBus : public iChildBus {
 public:
  void createChild(tChildDescription const&, i32&) override {}
  void removeChild(u32, i32&) override {}
};

}  // namespace

TEST(VexkFunctionDevice, LiesOnTopOfThePhysicalDevice) {
  tFunctionStack stack;
  ASSERT_NE(stack.getDevice(), nullptr);
  DEVICE_OBJECT* const top = IoGetAttachedDeviceReference(stack.getFloor());
  EXPECT_TRUE(top == stack.getDevice());
  ObfDereferenceObject(top);
  EXPECT_TRUE(stack.getHandler().getDeviceObject() == stack.getDevice());
  EXPECT_TRUE(stack.getHandler().getPhysicalDevice() == stack.getFloor());
  EXPECT_TRUE(stack.getHandler().getLowerDevice() == stack.getFloor());
  EXPECT_EQ(stack.getDevice()->StackSize, stack.getFloor()->StackSize + 1);
  EXPECT_EQ(stack.getDevice()->DeviceType, FILE_DEVICE_BUS_EXTENDER);
}

TEST(VexkFunctionDevice, TellsWhatBusItIs) {
  tFunctionStack stack;
  ASSERT_NE(stack.getDevice(), nullptr);
  GUID busType = {};
  stack.getHandler().getBusTypeGUID(busType);
  EXPECT_TRUE(isSameGUID(busType, kStackBusType));
  EXPECT_EQ(stack.getHandler().getLegacyBusNumber(), kStackBusNumber);
  EXPECT_FALSE(stack.getHandler().isChildDevice());
}

TEST(VexkFunctionDevice, HasTheFlagsOfTheLowerDeviceAndIsReady) {
  tFunctionStack plain;
  ASSERT_NE(plain.getDevice(), nullptr);
  EXPECT_EQ(plain.getDevice()->Flags & (DO_DEVICE_INITIALIZING | DO_POWER_PAGABLE), u32{0});
}

TEST(VexkFunctionDevice, TakesOverThatPowerIsPagable) {
  tFunctionStack stack(DO_POWER_PAGABLE | DO_BUFFERED_IO);
  ASSERT_NE(stack.getDevice(), nullptr);
  EXPECT_EQ(stack.getDevice()->Flags & (DO_POWER_PAGABLE | DO_BUFFERED_IO),
            DO_POWER_PAGABLE | DO_BUFFERED_IO);
}

TEST(VexkFunctionDevice, TakesOverNothingElse) {
  constexpr u32 kOthers = 0x19;  // unload pending, exclusive, direct I/O
  tFunctionStack stack(kOthers);
  ASSERT_NE(stack.getDevice(), nullptr);
  EXPECT_EQ(stack.getDevice()->Flags & (kOthers | DO_BUFFERED_IO | DO_POWER_PAGABLE), u32{0});
}

TEST(VexkFunctionDevice, StartGoesDownFirst) {
  tFunctionStack stack;
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "FS");
  EXPECT_TRUE(stack.component.place == nullptr);
  EXPECT_EQ(stack.component.cameWith, 0);
}

TEST(VexkFunctionDevice, StartTellsThePlaceForChildren) {
  tFunctionStack stack;
  ASSERT_NE(stack.getDevice(), nullptr);
  tNoBus place;
  stack.getHandler().attachChildBus(&place);
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_TRUE(stack.component.place == &place);
}

TEST(VexkFunctionDevice, AStartThatFailsBelowDoesNotReachTheComponent) {
  tFunctionStack stack;
  stack.floorStatus = STATUS_INSUFFICIENT_RESOURCES;
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_STREQ(stack.component.getCalls(), "F");
}

TEST(VexkFunctionDevice, AComponentThatFailsToStartFailsTheStart) {
  tFunctionStack stack;
  stack.component.startStatus = kStatusBadArgument;
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_UNSUCCESSFUL);
  stack.component.startStatus = kStatusOutOfMemory;
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_INSUFFICIENT_RESOURCES);
  stack.component.startStatus = 1;
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
}

TEST(VexkFunctionDevice, IsNotStartedWithAnEarlierError) {
  tFunctionStack stack;
  ASSERT_NE(stack.getDevice(), nullptr);
  i32 status = kStatusBadArgument;
  stack.getHandler().start(status);
  EXPECT_EQ(status, kStatusBadArgument);
  EXPECT_STREQ(stack.component.getCalls(), "");
}

TEST(VexkFunctionDevice, RemovalStopsReleasesAndDeletes) {
  tFunctionStack stack;
  ASSERT_NE(stack.getDevice(), nullptr);
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(stack.sendPnp(IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "FSsFr");
  EXPECT_EQ(stack.seenMinor, IRP_MN_REMOVE_DEVICE);
  EXPECT_FALSE(stack.hasDevice());
  EXPECT_TRUE(stack.getFloor()->AttachedDevice == nullptr);
}

TEST(VexkFunctionDevice, ADeviceThatNeverStartedIsStoppedToo) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_REMOVE_DEVICE);
  EXPECT_STREQ(stack.component.getCalls(), "sFr");
}

TEST(VexkFunctionDevice, SurpriseRemovalIsToldOnce) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(stack.sendPnp(IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "FSxF");
  EXPECT_EQ(stack.seenMinor, IRP_MN_SURPRISE_REMOVAL);
  EXPECT_EQ(stack.seenStatus, STATUS_SUCCESS);
  EXPECT_TRUE(stack.hasDevice());
  stack.sendPnp(IRP_MN_REMOVE_DEVICE);
  EXPECT_STREQ(stack.component.getCalls(), "FSxFFr");
}

TEST(VexkFunctionDevice, AStoppedDeviceStartsAgainWithoutAStop) {
  tFunctionStack stack;
  stack.sendPnp(IRP_MN_START_DEVICE);
  EXPECT_EQ(stack.sendPnp(IRP_MN_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.sendPnp(IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_STREQ(stack.component.getCalls(), "FSFFS");
}
