// How plug-and-play requests move a child through its states.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

// Sends requests one after the other; true when each of them succeeds.
template <size_t N>
bool sendAll(DEVICE_OBJECT* device, u8 const (&minors)[N]) {
  bool areGood = true;
  for (u8 minor : minors) areGood = areGood && sendPnp(device, minor) == STATUS_SUCCESS;
  return areGood;
}

using tWay = u8 const[2];

// What brings a child from its creation into each state that it can be in.
constexpr u8 kStart[] = {IRP_MN_START_DEVICE};
constexpr u8 kQueryStop[] = {IRP_MN_START_DEVICE, IRP_MN_QUERY_STOP_DEVICE};
constexpr u8 kStop[] = {IRP_MN_START_DEVICE, IRP_MN_QUERY_STOP_DEVICE, IRP_MN_STOP_DEVICE};
constexpr u8 kQueryRemove[] = {IRP_MN_START_DEVICE, IRP_MN_QUERY_REMOVE_DEVICE};
constexpr u8 kSurprise[] = {IRP_MN_START_DEVICE, IRP_MN_SURPRISE_REMOVAL};

}  // namespace

TEST(ChildLife, BeginsNotStarted) {
  tChildStack const stack;
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::NotStarted);
  EXPECT_EQ(stack.record().devicePower, PowerDeviceD3);
  EXPECT_EQ(stack.record().systemPower, PowerSystemWorking);
}

TEST(ChildLife, AStartStartsAndPowers) {
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kStart));
  EXPECT_EQ(stack.state(), tPnpState::Started);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::NotStarted);
  EXPECT_EQ(stack.record().devicePower, PowerDeviceD0);
}

TEST(ChildLife, AQueryRemembersTheStateBefore) {
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kQueryStop));
  EXPECT_EQ(stack.state(), tPnpState::QueryStop);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::Started);
}

TEST(ChildLife, ACancelGoesBack) {
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kQueryStop));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Started);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::QueryRemove);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Started);
}

TEST(ChildLife, ACancelGoesBackToWhateverWasBefore) {
  tChildStack const stack;
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  EXPECT_TRUE(sendAll(stack.child, kStop));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Stopped);
}

TEST(ChildLife, ARepeatedQueryKeepsTheFirstStateBefore) {
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kQueryStop));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::Started);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Started);
}

TEST(ChildLife, ACancelWithoutItsQueryChangesNothing) {
  tChildStack const stack;
  u8 const both[] = {IRP_MN_CANCEL_STOP_DEVICE, IRP_MN_CANCEL_REMOVE_DEVICE};
  EXPECT_TRUE(sendAll(stack.child, both));
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
  EXPECT_TRUE(sendAll(stack.child, kStart));
  EXPECT_TRUE(sendAll(stack.child, both));
  EXPECT_EQ(stack.state(), tPnpState::Started);
  EXPECT_TRUE(sendAll(stack.child, kStop));
  EXPECT_TRUE(sendAll(stack.child, both));
  EXPECT_EQ(stack.state(), tPnpState::Stopped);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::QueryStop);
}

TEST(ChildLife, ACancelOfTheOtherQueryChangesNothing) {
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kQueryStop));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::QueryStop);
  EXPECT_TRUE(sendAll(stack.child, kQueryRemove));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_CANCEL_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::QueryRemove);
}

TEST(ChildLife, EveryStateTakesAStart) {
  tWay* const ways[] = {&kQueryStop, &kQueryRemove, &kSurprise};
  for (auto const* way : ways) {
    tChildStack const stack;
    EXPECT_TRUE(sendAll(stack.child, *way));
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
    EXPECT_EQ(stack.state(), tPnpState::Started);
  }
  tChildStack const stack;
  EXPECT_TRUE(sendAll(stack.child, kStop));
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Started);
}

TEST(ChildLife, EveryStateTakesTheQueries) {
  tWay* const ways[] = {&kQueryStop, &kQueryRemove, &kSurprise};
  for (auto const* way : ways) {
    tChildStack const stack;
    EXPECT_TRUE(sendAll(stack.child, *way));
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_STOP_DEVICE), STATUS_SUCCESS);
    EXPECT_EQ(stack.state(), tPnpState::QueryStop);
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_QUERY_REMOVE_DEVICE), STATUS_SUCCESS);
    EXPECT_EQ(stack.state(), tPnpState::QueryRemove);
  }
}

TEST(ChildLife, AStopNeedsNoQuery) {
  tChildStack const stack;
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(stack.state(), tPnpState::Stopped);
}

TEST(ChildLife, AListedChildThatIsRemovedIsAsNew) {
  tWay* const ways[] = {&kQueryStop, &kQueryRemove, &kSurprise};
  for (auto const* way : ways) {
    tChildStack stack;
    EXPECT_TRUE(sendAll(stack.child, *way));
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
    EXPECT_EQ(stack.state(), tPnpState::NotStarted);
    EXPECT_EQ(stack.countRelations(), 1u);
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
    EXPECT_EQ(stack.state(), tPnpState::Started);
  }
}

TEST(ChildLife, ASurpriseWithoutAWaiterLeavesTheRequestsIn) {
  tChildStack stack;
  EXPECT_TRUE(sendAll(stack.child, kSurprise));
  EXPECT_EQ(stack.state(), tPnpState::SurpriseRemoved);
  EXPECT_EQ(stack.record().states.getPrevious(), tPnpState::Started);
  EXPECT_EQ(tDeviceRequest(stack.child, IRP_MJ_DEVICE_CONTROL).send(), STATUS_SUCCESS);
  EXPECT_EQ(stack.handler.calls, 1);
}
