// Parts of the device wrapper before their beginning and after their end.

#include <gtest/gtest.h>

#include "package/windows/wdm/tParentList.h"
#include "package/windows/wdm/tPnpStates.h"
#include "support/tBusStack.h"
#include "trace/startedModules.h"

using namespace nOXDIAG100;

TEST(ParentList, HasAndTakesNothingBeforeItIsReady) {
  tParentList list;
  DEVICE_OBJECT device = {};
  EXPECT_EQ(list.provide(device), nullptr);
  EXPECT_EQ(list.enter(device), nullptr);
  EXPECT_EQ(list.take(device), nullptr);
}

TEST(PnpStates, NothingComesBehindTheEnd) {
  tPnpStates states;
  states.enter(tPnpState::Deleted);
  states.enter(tPnpState::Started);
  EXPECT_EQ(states.get(), tPnpState::Deleted);
}

// Two starts of a bus at a time: the second comes while the first takes the memory of its record.
TEST(ParentList, ABusThatIsEnteredTwiceAtATimeHasOneRecord) {
  struct tSecond {
    tParentList list;
    DEVICE_OBJECT* bus = nullptr;
    tParentDevice* parent = nullptr;
    bool hasBegun = false;

    void begin() {
      if (hasBegun) return;
      hasBegun = true;
      parent = list.provide(*bus);
    }
  } second;
  tBusStack const stack;
  second.bus = stack.bus();
  second.list.initialise();
  u64 const before = ntoshost::outstandingBlocks();
  ntoshost::visitFallibleCalls([](void* context, u32) { static_cast<tSecond*>(context)->begin(); },
                               &second);
  tParentDevice* const parent = second.list.provide(*second.bus);
  ntoshost::visitFallibleCalls(nullptr, nullptr);
  ASSERT_NE(parent, nullptr);
  EXPECT_EQ(parent, second.parent);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + 1);
  parent->leave();
  parent->leave();
  EXPECT_EQ(second.list.take(*second.bus), parent);
  EXPECT_EQ(second.list.take(*second.bus), nullptr);
  parent->close();
  parent->destroy();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}
