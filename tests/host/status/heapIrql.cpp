// The status heap at an IRQL where its lock cannot be waited for.

#include "startedHeap.h"
#include "support/callerCodes.h"
#include "vexk/statusCodes.h"

#define OXDIAG_COMPONENT "heapIrql"
#include "oxdiagk/statusMacros.h"

using nOXDIAG100::kStatusHeapBadBlock;
using nOXDIAG100::tStatus2;

namespace {

// The status after giving a block back at DISPATCH_LEVEL.
i32 giveBackRaised(void* block, i32 status) {
  tRaisedIrql const raised(DISPATCH_LEVEL);
  theHeap().releaseMemoryBlock(block, status);
  return status;
}

}  // namespace

TEST(StatusHeapIrql, ItWorksAtApcLevel) {
  tStartedHeap const started;
  tRaisedIrql const raised(APC_LEVEL);
  void* const block = takeBlock(240);
  EXPECT_TRUE(block != nullptr);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapIrql, TakingReportsTheLockAndChangesNothing) {
  tStartedHeap const started;
  tHeapRecord const before = heapRecord();
  i32 status = 0;
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    EXPECT_TRUE(theHeap().allocateMemoryBlock(240, status) == nullptr);
  }
  EXPECT_EQ(status, kStatusSyncIrqlTooHigh);
  EXPECT_TRUE(isSameRecord(before, heapRecord()));
}

TEST(StatusHeapIrql, GivingBackReportsTheLockAndKeepsTheBlock) {
  tStartedHeap const started;
  void* const block = takeBlock(240);
  EXPECT_EQ(giveBackRaised(block, 0), kStatusSyncIrqlTooHigh);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), 1u);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapIrql, TheLocksErrorReplacesAWarningButNoError) {
  tStartedHeap const started;
  void* const block = takeBlock(240);
  EXPECT_EQ(giveBackRaised(block, kWarning), kStatusSyncIrqlTooHigh);
  EXPECT_EQ(giveBackRaised(block, kEarlierError), kEarlierError);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapIrql, AddressesOutsideTheArenaAreRefusedWithoutTheLock) {
  tStartedHeap const started;
  char local[16];
  EXPECT_EQ(giveBackRaised(nullptr, 0), kStatusHeapBadBlock);
  EXPECT_EQ(giveBackRaised(local, 0), kStatusHeapBadBlock);
  EXPECT_EQ(giveBackRaised(atOffset(16), 0), kStatusHeapBadBlock);
  EXPECT_EQ(giveBackRaised(atOffset(kArenaSize + 16), 0), kStatusHeapBadBlock);
}

TEST(StatusHeapIrql, AnErrorIsSetWithoutDetail) {
  tStartedHeap const started;
  tRaisedIrql const raised(DISPATCH_LEVEL);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_FALSE(status.hasDetail());
}

TEST(StatusHeapIrql, AWarningBecomesOutOfMemory) {
  tStartedHeap const started;
  tRaisedIrql const raised(DISPATCH_LEVEL);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarning);
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
}

TEST(StatusHeapIrql, AStatusWithDetailIsWrittenAsText) {
  tStartedHeap const started;
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  char text[tStatus2::kMaxTextSize];
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    status.toString(text, sizeof text);
  }
  EXPECT_NE(std::string(text).find("Component Name = heapIrql"), std::string::npos);
}

TEST(StatusHeapIrql, ADetailThatIsDroppedStaysAllocatedUntilTheStop) {
  tStartedHeap const started;
  {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, kError);
    ASSERT_TRUE(status.hasDetail());
    tRaisedIrql const raised(DISPATCH_LEVEL);
    status.setCode(0);
    EXPECT_FALSE(status.hasDetail());
  }
  EXPECT_EQ(theHeap().getAllocatedBlocks(), 1u);
  EXPECT_EQ(theHeap().getUsedUnits(), 16u);
}
