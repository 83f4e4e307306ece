// What load pushes for unload.

#include "package/windows/tTerminatorList.h"

#include <gtest/gtest.h>

#include <string>

#include "ntoshost/executive.h"

namespace {

using nOXDIAG100::tTerminatorList;

std::string calls;

void callFirst() {
  calls += "first ";
}
void callSecond() {
  calls += "second ";
}

}  // namespace

TEST(TerminatorList, LastPushedIsCalledFirst) {
  calls.clear();
  tTerminatorList list;
  EXPECT_EQ(list.push(&callFirst), 0);
  EXPECT_EQ(list.push(&callSecond), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), 2u);
  list.runAll();
  EXPECT_EQ(calls, "second first ");
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST(TerminatorList, IsEmptyOnceItHasRun) {
  calls.clear();
  tTerminatorList list;
  list.push(&callFirst);
  list.runAll();
  list.runAll();
  EXPECT_EQ(calls, "first ");
  EXPECT_EQ(list.push(&callSecond), 0);
  list.runAll();
  EXPECT_EQ(calls, "first second ");
}

TEST(TerminatorList, FailedPushLeavesTheListAsItWas) {
  calls.clear();
  tTerminatorList list;
  list.push(&callFirst);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(list.push(&callSecond), 1);
  ntoshost::clearFaults();
  list.runAll();
  EXPECT_EQ(calls, "first ");
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}
