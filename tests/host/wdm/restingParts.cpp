// Parts of the device wrapper before their beginning and after their end.

#include <gtest/gtest.h>

#include "package/windows/wdm/tParentList.h"
#include "package/windows/wdm/tPnpStates.h"

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
