// A child's handler is told when the child's device comes to its end, and only then.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "support/tBusStack.h"
#include "vexkntos/handlerOf.h"

namespace {

class tStoppedHandler : public tChildHandler {
 public:
  void stop(bool isSurprise) override {
    ++stops;
    wasSurprise = isSurprise;
  }

  int stops = 0;
  bool wasSurprise = false;
};

// A started bus with one child that has such a handler.
class tStoppedStack : public tBusStack {
 public:
  tStoppedStack() {
    startBus();
    tTestChild const description(ending, 1, 7);
    if (create(description.description) == 0) child = driver().newestDevice();
  }

  tStoppedHandler ending;
  DEVICE_OBJECT* child = nullptr;
};

}  // namespace

TEST(ChildHandlerEnd, AChildThatTheBusListsIsNotAtItsEnd) {
  tStoppedStack stack;
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  sendPnp(stack.child, IRP_MN_SURPRISE_REMOVAL);
  sendPnp(stack.child, IRP_MN_REMOVE_DEVICE);
  EXPECT_EQ(stack.ending.stops, 0);
}

TEST(ChildHandlerEnd, AnUnstartedChildEndsWithItsBus) {
  tStoppedStack stack;
  stack.removeBus();
  EXPECT_EQ(stack.ending.stops, 1);
  EXPECT_FALSE(stack.ending.wasSurprise);
}

TEST(ChildHandlerEnd, AStartedChildOutlivesItsBusUntilItIsRemoved) {
  tStoppedStack stack;
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  stack.removeBus();
  EXPECT_EQ(stack.ending.stops, 0);
  sendPnp(stack.child, IRP_MN_REMOVE_DEVICE);
  EXPECT_EQ(stack.ending.stops, 1);
  EXPECT_FALSE(stack.ending.wasSurprise);
}

TEST(ChildHandlerEnd, ASurprisedChildSaysSo) {
  tStoppedStack stack;
  ASSERT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  sendPnp(stack.child, IRP_MN_SURPRISE_REMOVAL);
  stack.removeBus();
  sendPnp(stack.child, IRP_MN_REMOVE_DEVICE);
  EXPECT_EQ(stack.ending.stops, 1);
  EXPECT_TRUE(stack.ending.wasSurprise);
}

TEST(ChildHandlerEnd, AChildThatNobodyHasSeenEndsWhenItIsTakenAway) {
  tStoppedStack stack;
  i32 status = 0;
  stack.remove(7, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(stack.ending.stops, 1);
}

TEST(ChildHandlerEnd, AChildThatTheSystemKnowsEndsWhenItIsTakenAway) {
  tStoppedStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  i32 status = 0;
  stack.remove(7, status);
  EXPECT_EQ(stack.ending.stops, 1);
  EXPECT_FALSE(&vexHandlerOf(*stack.child) == &stack.ending);
  ASSERT_EQ(stack.countRelations(), 0u);
  sendPnp(stack.child, IRP_MN_REMOVE_DEVICE);
  EXPECT_EQ(stack.ending.stops, 1);
}

TEST(ChildHandlerEnd, ASurprisedBusLeavesItToTheChildsOwnRemoval) {
  tStoppedStack stack;
  ASSERT_EQ(stack.countRelations(), 1u);
  ASSERT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  stack.removeBus();
  EXPECT_EQ(stack.ending.stops, 0);
  sendPnp(stack.child, IRP_MN_REMOVE_DEVICE);
  EXPECT_EQ(stack.ending.stops, 1);
  EXPECT_FALSE(stack.ending.wasSurprise);
}

TEST(ChildHandlerEnd, ASurprisedBusEndsAChildThatNobodyHasSeen) {
  tStoppedStack stack;
  sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL);
  EXPECT_EQ(stack.ending.stops, 1);
}

TEST(ChildHandlerEnd, ARefusedChildsHandlerIsNotCalled) {
  tStoppedHandler refused;
  tStoppedStack stack;
  tTestChild const again(refused, 1, 8);
  EXPECT_LT(stack.create(again.description), 0);
  sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL);
  tTestChild const late(refused, 2, 8);
  EXPECT_LT(stack.create(late.description), 0);
  EXPECT_EQ(refused.stops, 0);
  EXPECT_EQ(refused.calls, 0);
}
