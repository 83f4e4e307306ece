// The status heap from its start to its stop, and starts that fail.

#include <set>

#include "oxdiagk/iStatus2Description.h"
#include "startedHeap.h"
#include "support/callerCodes.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

#define OXDIAG_COMPONENT "heapLife"
#include "oxdiagk/statusMacros.h"

using nOXDIAG100::iStatus2Description;
using nOXDIAG100::kStatusHeapBadBlock;
using nOXDIAG100::kStatusHeapFull;
using nOXDIAG100::statusHeapMain;
using nOXDIAG100::tStatus2;

namespace {

// Fallible calls of a start, in order.
constexpr u64 kRecordCall = 1;
constexpr u64 kArenaCall = 2;
constexpr u64 kFirstLockCall = 3;

void expectFailedStart(i32 wanted) {
  u64 const before = ntoshost::outstandingBlocks();
  EXPECT_EQ(statusHeapMain(kStart), wanted);
  EXPECT_TRUE(findHeap() == nullptr);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

std::multiset<size_t> outstandingSizes() {
  std::multiset<size_t> sizes;
  ntoshost::visitOutstanding(
      [](void* context, ntoshost::PoolBlock const& block) {
        static_cast<std::multiset<size_t>*>(context)->insert(block.size);
      },
      &sizes);
  return sizes;
}

}  // namespace

TEST(StatusHeapLife, ThereIsNoHeapBeforeTheStart) {
  tStartedPlatform const platform;
  EXPECT_TRUE(findHeap() == nullptr);
}

TEST(StatusHeapLife, TheStartMakesTheHeapAndTheStopDestroysIt) {
  tStartedPlatform const platform;
  EXPECT_EQ(statusHeapMain(kStart), 0);
  EXPECT_TRUE(findHeap() != nullptr);
  EXPECT_EQ(statusHeapMain(kStop), 0);
  EXPECT_TRUE(findHeap() == nullptr);
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

TEST(StatusHeapLife, ASecondStartKeepsTheHeapAndItsBlocks) {
  tStartedHeap const started;
  void* const block = takeBlock(240);
  auto* const heap = findHeap();
  EXPECT_EQ(statusHeapMain(kStart), 0);
  EXPECT_EQ(findHeap(), heap);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), 1u);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapLife, AStopWithoutHeapDoesNothing) {
  tStartedPlatform const platform;
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, OtherPhasesDoNothing) {
  tStartedPlatform const platform;
  for (u32 phase : {2u, 3u, 4u, 5u, 6u, 0xFFFFFFFFu}) {
    EXPECT_EQ(statusHeapMain(phase), 0);
    EXPECT_TRUE(findHeap() == nullptr);
  }
  EXPECT_EQ(statusHeapMain(kStart), 0);
  auto* const heap = findHeap();
  for (u32 phase : {2u, 3u, 4u, 5u, 6u, 0xFFFFFFFFu}) {
    EXPECT_EQ(statusHeapMain(phase), 0);
    EXPECT_EQ(findHeap(), heap);
  }
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, AHeapCanBeMadeAgain) {
  tStartedPlatform const platform;
  for (int i = 0; i != 3; ++i) {
    EXPECT_EQ(statusHeapMain(kStart), 0);
    EXPECT_TRUE(isHeapUnused());
    EXPECT_EQ(takingFails(240), 0);
    EXPECT_EQ(statusHeapMain(kStop), 0);
  }
}

TEST(StatusHeapLife, TheHeapTakesARecordAndAnArenaFromTheLongLivedMemory) {
  tStartedHeap const started;
  std::multiset<size_t> const sizes = outstandingSizes();
  EXPECT_EQ(sizes.count(64), 1u);
  EXPECT_EQ(sizes.count(kArenaSize), 1u);
  ntoshost::visitOutstanding(
      [](void*, ntoshost::PoolBlock const& block) { EXPECT_EQ(block.type, NonPagedPoolNx); },
      nullptr);
}

TEST(StatusHeapLife, WithoutMemoryForTheRecordThereIsNoHeap) {
  tStartedPlatform const platform;
  ntoshost::failNth(ntoshost::kFaultMemory, kRecordCall);
  expectFailedStart(kStatusOutOfMemory);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 1u);
}

TEST(StatusHeapLife, WithoutMemoryForTheArenaEveryAllocationFails) {
  tStartedPlatform const platform;
  ntoshost::failNth(ntoshost::kFaultMemory, kArenaCall);
  EXPECT_EQ(statusHeapMain(kStart), 0);
  ASSERT_TRUE(findHeap() != nullptr);
  EXPECT_EQ(theHeap().getFreeUnits(), 0u);
  for (i32 size : {0, 1, 240, 16384, -1}) EXPECT_EQ(takingFails(size), kStatusHeapFull);
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, WithoutArenaNoAddressIsABlock) {
  tStartedPlatform const platform;
  ntoshost::failNth(ntoshost::kFaultMemory, kArenaCall);
  EXPECT_EQ(statusHeapMain(kStart), 0);
  char local[64];
  EXPECT_EQ(giveBack(nullptr), kStatusHeapBadBlock);
  EXPECT_EQ(giveBack(local), kStatusHeapBadBlock);
  for (u64 address : {u64{16}, u64{32}, u64{kArenaSize}}) {
    EXPECT_EQ(giveBack(reinterpret_cast<void*>(address)), kStatusHeapBadBlock);
  }
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, WithoutArenaStatusesKeepTheirErrors) {
  tStartedPlatform const platform;
  ntoshost::failNth(ntoshost::kFaultMemory, kArenaCall);
  EXPECT_EQ(statusHeapMain(kStart), 0);
  tStatus2 error;
  tStatus2 warning;
  OXDIAG_SET_STATUS(error, kError);
  OXDIAG_SET_STATUS(warning, kWarning);
  EXPECT_EQ(error.getCode(), kError);
  EXPECT_EQ(warning.getCode(), kStatusOutOfMemory);
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, ALockThatCannotBeOpenedLeavesNothing) {
  tStartedPlatform const platform;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  EXPECT_EQ(statusHeapMain(kStart), 0);
  u64 const calls = ntoshost::fallibleCallsSeen();
  EXPECT_EQ(statusHeapMain(kStop), 0);
  ASSERT_GE(calls, kFirstLockCall);
  for (u64 n = kFirstLockCall; n <= calls; ++n) {
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    expectFailedStart(kStatusOutOfMemory);
  }
}

TEST(StatusHeapLife, AnExhaustedPoolLeavesNothing) {
  tStartedPlatform const platform;
  for (u64 n : {kRecordCall, kArenaCall, kFirstLockCall}) {
    ntoshost::failFrom(ntoshost::kFaultMemory, n);
    expectFailedStart(kStatusOutOfMemory);
  }
}

TEST(StatusHeapLife, WithoutPlatformThereIsNoHeap) {
  expectFailedStart(kStatusNotInitialized);
}

TEST(StatusHeapLife, AStartThatFailedCanBeTriedAgain) {
  tStartedPlatform const platform;
  ntoshost::failNth(ntoshost::kFaultMemory, kRecordCall);
  expectFailedStart(kStatusOutOfMemory);
  ntoshost::clearFaults();
  EXPECT_EQ(statusHeapMain(kStart), 0);
  EXPECT_EQ(takingFails(240), 0);
  EXPECT_EQ(statusHeapMain(kStop), 0);
}

TEST(StatusHeapLife, WithoutHeapStatusesKeepTheirErrors) {
  tStatus2 error;
  tStatus2 warning;
  OXDIAG_SET_STATUS(error, kError);
  OXDIAG_SET_STATUS(warning, kWarning);
  EXPECT_EQ(error.getCode(), kError);
  EXPECT_FALSE(error.hasDetail());
  EXPECT_EQ(warning.getCode(), kStatusOutOfMemory);
}

TEST(StatusHeapLife, WithoutHeapThereIsNoMemoryForDescriptions) {
  i32 status = 0;
  EXPECT_TRUE(iStatus2Description::operator new(16) == nullptr);
  EXPECT_TRUE(iStatus2Description::operator new(16, kMemLongLived, &status) == nullptr);
  EXPECT_EQ(status, kStatusOutOfMemory);
  iStatus2Description::operator delete(nullptr);
}

TEST(StatusHeapLife, ARunningHeapTakesNothingFromTheGeneralPool) {
  tStartedHeap const started;
  ntoshost::failFrom(ntoshost::kFaultAll, 1);
  tStatus2 statuses[64];
  for (tStatus2& status : statuses) OXDIAG_SET_STATUS(status, kError);
  for (tStatus2& status : statuses) EXPECT_TRUE(status.hasDetail());
  tStatus2 const copy(statuses[0]);
  char text[tStatus2::kMaxTextSize];
  copy.toString(text, sizeof text);
  for (tStatus2& status : statuses) status.setCode(0);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(StatusHeapLife, AnEndWhileSomebodyHasTheLockSaysSo) {
  tStartedPlatform const platform;
  ASSERT_EQ(statusHeapMain(kStart), 0);
  auto* lock = reinterpret_cast<iSync*>(heapRecord().lock);
  ASSERT_EQ(lock->acquire(kSyncWaitForever), 0);
  EXPECT_EQ(statusHeapMain(kStop), kStatusSyncInUse);
  EXPECT_EQ(lock->release(), 0);
  EXPECT_EQ(syncClose(lock), 0);
}
