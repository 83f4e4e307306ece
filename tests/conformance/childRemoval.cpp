// Children taken away by slot, or by the system, as far as nobody waits.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "support/tChildStack.h"
#include "vexk/statusCodes.h"

using namespace nOXDIAG100;

namespace {

// Keeps a device for a while, whatever is done to it.
class tKeptDevice {
 public:
  explicit tKeptDevice(DEVICE_OBJECT* object) : device(object) {
    if (device != nullptr) ObfReferenceObject(device);
  }
  ~tKeptDevice() {
    if (device != nullptr) ObfDereferenceObject(device);
  }
  tKeptDevice(tKeptDevice const&) = delete;
  tKeptDevice& operator=(tKeptDevice const&) = delete;

 private:
  DEVICE_OBJECT* device;
};

i32 take(tBusStack const& stack, u32 slot) {
  i32 status = 0;
  stack.remove(slot, status);
  return status;
}

bool isListed(tTestDriver const& driver, DEVICE_OBJECT const* device) {
  DEVICE_OBJECT const* each = driver.newestDevice();
  while (each != nullptr && each != device) each = each->NextDevice;
  return each != nullptr;
}

}  // namespace

TEST(ChildRemoval, AChildThatNobodyKnowsIsDeletedAtOnce) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(take(stack, 7), 0);
  EXPECT_EQ(stack.state(), tPnpState::Deleted);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
  ASSERT_EQ(stack.countRelations(), 0u);
}

TEST(ChildRemoval, AChildThatIsNotStartedIsDrained) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(take(stack, 7), 0);
  EXPECT_FALSE(stack.record().isPresent);
  EXPECT_NE(stack.record().parent, nullptr);
  EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_DEVICE_CONTROL).send(), STATUS_DELETE_PENDING);
}

TEST(ChildRemoval, TheNextRelationsForgetAnAbsentChild) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(take(stack, 7), 0);
  ASSERT_EQ(stack.countRelations(), 0u);
  EXPECT_EQ(stack.record().parent, nullptr);
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  EXPECT_TRUE(isListed(stack.driver(), stack.child));
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Deleted);
  EXPECT_FALSE(isListed(stack.driver(), stack.child));
}

TEST(ChildRemoval, AnAbsentChildThatIsStillListedIsNotDeleted) {
  tChildStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(take(stack, 7), 0);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  EXPECT_TRUE(isListed(stack.driver(), stack.child));
}

TEST(ChildRemoval, AChildIsDeletedOnce) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(take(stack, 7), 0);
  ASSERT_EQ(stack.countRelations(), 0u);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Deleted);
}

TEST(ChildRemoval, ADeletedChildAnswersNothing) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(take(stack, 7), 0);
  for (u8 minor = 0; minor <= IRP_MN_SURPRISE_REMOVAL; ++minor) {
    NTSTATUS const wanted = minor == IRP_MN_REMOVE_DEVICE ? STATUS_SUCCESS : STATUS_DELETE_PENDING;
    EXPECT_EQ(sendPnp(stack.child, minor), wanted);
  }
  u8 const minors[] = {IRP_MN_SET_POWER, IRP_MN_QUERY_POWER};
  for (u8 minor : minors) {
    EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_POWER, minor).send(), STATUS_DELETE_PENDING);
  }
  EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_CREATE).send(), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_DEVICE_CONTROL).send(), STATUS_DELETE_PENDING);
  EXPECT_EQ(stack.state(), tPnpState::Deleted);
}

TEST(ChildRemoval, AnUnlinkedChildHasNoBusToAsk) {
  tChildStack stack;
  tKeptDevice const kept(stack.child);
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(take(stack, 7), 0);
  ASSERT_EQ(stack.countRelations(), 0u);
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  request.location().Parameters.DeviceCapabilities.Capabilities = &capabilities;
  EXPECT_EQ(request.send(), STATUS_NO_SUCH_DEVICE);
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
}

TEST(ChildRemoval, AnEmptySlotIsABadArgument) {
  tChildStack stack;
  ASSERT_EQ(take(stack, 8), kStatusBadArgument);
  ASSERT_EQ(take(stack, 7), 0);
  ASSERT_EQ(take(stack, 7), kStatusBadArgument);
}

TEST(ChildRemoval, OneOfTwoInASlotIsTakenAtATime) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const first = stack.add(1, 5);
  DEVICE_OBJECT* const second = stack.add(2, 5);
  ASSERT_EQ(take(stack, 5), 0);
  EXPECT_FALSE(isListed(stack.driver(), first));
  EXPECT_TRUE(isListed(stack.driver(), second));
  ASSERT_EQ(take(stack, 5), 0);
  ASSERT_EQ(take(stack, 5), kStatusBadArgument);
}

TEST(ChildRemoval, ANegativeStatusIsKept) {
  tChildStack stack;
  i32 status = -7;
  stack.remove(7, status);
  EXPECT_EQ(status, -7);
  EXPECT_TRUE(stack.record().isPresent);
}
