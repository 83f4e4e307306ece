// Fallible calls that fail by count.

#include "ntoshost/faults.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "ntoshost/pool.h"
#include "scribble.h"

namespace {

constexpr u32 kOwnKind = ntoshost::kFaultOther;

class Faults : public testing::Test {
 protected:
  ~Faults() override {
    ntoshost::clearFaults();
    ntoshost::visitFallibleCalls(nullptr, nullptr);
  }
};

// Which of `count` calls failed, as text: '.' for one that did not.
std::string callsOf(u32 kind, u64 count) {
  std::string calls;
  for (u64 i = 0; i < count; ++i) calls += ntoshost::injectFault(kind) ? 'x' : '.';
  return calls;
}

bool canAllocate() {
  void* const block = ExAllocatePoolWithTag(PagedPool, 1, kTag);
  if (block == nullptr) return false;
  ExFreePoolWithTag(block, kTag);
  return true;
}

TEST_F(Faults, NothingFailsUnlessAskedFor) {
  ntoshost::watchCalls(ntoshost::kFaultAll);
  EXPECT_EQ(callsOf(kOwnKind, 5), ".....");
}

TEST_F(Faults, TheNthCallFailsAndOnlyThisOne) {
  ntoshost::failNth(kOwnKind, 1);
  EXPECT_EQ(callsOf(kOwnKind, 4), "x...");
  ntoshost::failNth(kOwnKind, 3);
  EXPECT_EQ(callsOf(kOwnKind, 5), "..x..");
}

TEST_F(Faults, FromTheNthCallOnAllFail) {
  ntoshost::failFrom(kOwnKind, 3);
  EXPECT_EQ(callsOf(kOwnKind, 5), "..xxx");
}

TEST_F(Faults, WithoutAKindAllKindsFail) {
  ntoshost::failFrom(1);
  EXPECT_EQ(callsOf(kOwnKind, 1), "x");
  EXPECT_EQ(callsOf(ntoshost::kFaultUserCopy, 1), "x");
  ntoshost::failNth(2);
  EXPECT_EQ(callsOf(kOwnKind, 1), ".");
  EXPECT_EQ(callsOf(ntoshost::kFaultUserCopy, 1), "x");
}

TEST_F(Faults, CallsOfOtherKindsNeitherFailNorCount) {
  ntoshost::failNth(kOwnKind, 2);
  EXPECT_EQ(callsOf(ntoshost::kFaultUserCopy, 3), "...");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_EQ(callsOf(kOwnKind, 2), ".x");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 2u);
}

TEST_F(Faults, ClearingStopsTheFailuresAndKeepsTheCounts) {
  ntoshost::failFrom(kOwnKind, 2);
  callsOf(kOwnKind, 3);
  ntoshost::clearFaults();
  EXPECT_EQ(callsOf(kOwnKind, 3), "...");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 3u);
  EXPECT_EQ(ntoshost::faultsInjected(), 2u);
}

TEST_F(Faults, WatchingStartsTheCountsFromZero) {
  ntoshost::failFrom(kOwnKind, 1);
  callsOf(kOwnKind, 3);
  ntoshost::watchCalls(kOwnKind);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_EQ(ntoshost::faultsInjected(), 0u);
  EXPECT_EQ(callsOf(kOwnKind, 2), "..");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 2u);
}

TEST_F(Faults, APoolAllocationIsAFallibleCall) {
  ntoshost::failNth(ntoshost::kFaultMemory, 2);
  EXPECT_TRUE(canAllocate());
  EXPECT_FALSE(canAllocate());
  EXPECT_TRUE(canAllocate());
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST_F(Faults, EachKindHasAName) {
  EXPECT_STREQ(ntoshost::faultName(ntoshost::kFaultMemory), "memory");
  EXPECT_STREQ(ntoshost::faultName(ntoshost::kFaultFileOpen), "file open");
  EXPECT_STREQ(ntoshost::faultName(ntoshost::kFaultSecurity), "security");
  EXPECT_STREQ(ntoshost::faultName(kOwnKind), "other");
}

TEST_F(Faults, EachCallIsVisitedWhetherItFailsOrNot) {
  std::vector<u32> kinds;
  ntoshost::visitFallibleCalls(
      [](void* seen, u32 kind) { static_cast<std::vector<u32>*>(seen)->push_back(kind); }, &kinds);
  ntoshost::failNth(kOwnKind, 1);
  callsOf(kOwnKind, 2);
  EXPECT_TRUE(canAllocate());
  ntoshost::visitFallibleCalls(nullptr, nullptr);
  callsOf(kOwnKind, 1);
  EXPECT_EQ(kinds, (std::vector<u32>{kOwnKind, kOwnKind, ntoshost::kFaultMemory}));
}

TEST_F(Faults, EachCallOfAnOperationIsMadeToFailInTurn) {
  std::string runs;
  u64 const failures =
      ntoshost::failEachCall(kOwnKind, [&](u64) { runs += callsOf(kOwnKind, 3) + " "; });
  EXPECT_EQ(failures, 3u);
  EXPECT_EQ(runs, "x.. .x. ..x ... ");
}

TEST_F(Faults, AnOperationWithoutFallibleCallsRunsOnce) {
  u64 runs = 0;
  EXPECT_EQ(ntoshost::failEachCall(kOwnKind, [&](u64) { ++runs; }), 0u);
  EXPECT_EQ(runs, 1u);
}

TEST_F(Faults, OneOfTheCallsOfAllThreadsFails) {
  constexpr u64 kThreads = 4;
  constexpr u64 kCalls = 1000;
  ntoshost::failNth(kOwnKind, kThreads * kCalls / 2);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (u64 i = 0; i < kThreads; ++i) threads.emplace_back([] { callsOf(kOwnKind, kCalls); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), kThreads * kCalls);
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
}

}  // namespace
