// Giving blocks back to the status heap, in every order.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"

using nOXDIAG100::kStatusHeapBadBlock;

namespace {

constexpr u32 kUnits = 16;

// The heap filled with 64 blocks; block 0 lies lowest.
class tFilledHeap {
 public:
  static constexpr u32 kCount = 64;

  tFilledHeap() {
    for (u32 i = kCount; i != 0; --i) blocks[i - 1] = takeBlock(kRecordSize);
  }
  ~tFilledHeap() {
    for (u32 i = 0; i != kCount; ++i) give(i);
  }
  tFilledHeap(tFilledHeap const&) = delete;
  tFilledHeap& operator=(tFilledHeap const&) = delete;

  void give(u32 index) {
    if (blocks[index] != nullptr) lastStatus = giveBack(blocks[index]);
    blocks[index] = nullptr;
  }

  void* blocks[kCount];
  i32 lastStatus = 0;
};

// Gives back every block, in steps of `stride` around, and returns whether the counters were right
// after each.
bool giveBackInSteps(u32 stride) {
  tFilledHeap heap;
  bool right = true;
  for (u32 i = 0; i != tFilledHeap::kCount; ++i) {
    heap.give(i * stride % tFilledHeap::kCount);
    right = right && heap.lastStatus == 0 && theHeap().getFreeUnits() == (i + 1) * kUnits &&
            theHeap().getUsedUnits() == 1024 - (i + 1) * kUnits &&
            theHeap().getAllocatedBlocks() == tFilledHeap::kCount - 1 - i;
  }
  return right && isHeapUnused();
}

}  // namespace

TEST(StatusHeapGivingBack, AFullHeapGetsItsFirstFreeFragment) {
  tFilledHeap heap;
  heap.give(30);
  EXPECT_EQ(heap.lastStatus, 0);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  EXPECT_EQ(theHeap().getFreeUnits(), kUnits);
}

TEST(StatusHeapGivingBack, WithoutFreeNeighbourAddsAFragment) {
  tFilledHeap heap;
  heap.give(10);
  heap.give(50);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{2});
  heap.give(30);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{3});
  heap.give(1);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{4});
}

TEST(StatusHeapGivingBack, BelowAFreeBlockMergesWithIt) {
  tFilledHeap heap;
  void* const lower = heap.blocks[29];
  heap.give(30);
  heap.give(29);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  EXPECT_EQ(headerOf(lower)->units, u32{2} * kUnits);
}

TEST(StatusHeapGivingBack, AboveAFreeBlockMergesIntoIt) {
  tFilledHeap heap;
  void* const lower = heap.blocks[29];
  heap.give(29);
  heap.give(30);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  EXPECT_EQ(headerOf(lower)->units, u32{2} * kUnits);
}

TEST(StatusHeapGivingBack, BetweenFreeBlocksMergesAllThree) {
  tFilledHeap heap;
  void* const lower = heap.blocks[29];
  heap.give(29);
  heap.give(31);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{2});
  heap.give(30);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  EXPECT_EQ(headerOf(lower)->units, u32{3} * kUnits);
}

TEST(StatusHeapGivingBack, TheLowestBlockDoesNotMergeWithTheAnchor) {
  tFilledHeap heap;
  void* const lowest = heap.blocks[0];
  ASSERT_TRUE(lowest != nullptr && heap.blocks[63] != nullptr);
  heap.give(0);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  EXPECT_EQ(headerOf(lowest)->units, kUnits);
  EXPECT_EQ(headerOf(atOffset(16))->units, u32{0});
  heap.blocks[0] = takeBlock(kRecordSize);
  EXPECT_TRUE(heap.blocks[0] == lowest);
}

TEST(StatusHeapGivingBack, TheHighestBlockIsTheLastFragment) {
  tFilledHeap heap;
  void* const highest = heap.blocks[63];
  ASSERT_NE(highest, nullptr);
  heap.give(10);
  heap.give(63);
  EXPECT_EQ(heap.lastStatus, 0);
  EXPECT_EQ(headerOf(highest)->next, heapRecord().arena);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{2});
}

TEST(StatusHeapGivingBack, InAnyOrderOfThreeNeighboursLeavesOneFragment) {
  constexpr u32 kOrders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  for (auto const& order : kOrders) {
    tFilledHeap heap;
    for (u32 index : order) heap.give(40 + index);
    EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
    EXPECT_EQ(theHeap().getFreeUnits(), u32{3} * kUnits);
  }
}

TEST(StatusHeapGivingBack, InAnyOrderOfAllBlocksLeavesAnUnusedHeap) {
  for (u32 stride = 1; stride < 64; stride += 2) EXPECT_TRUE(giveBackInSteps(stride));
}

TEST(StatusHeapGivingBack, TakesABlockWithoutContentAtTheVeryTop) {
  void* const top = takeBlock(0);
  EXPECT_EQ(offsetInArena(top), u64{kArenaSize});
  EXPECT_EQ(giveBack(top), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapGivingBack, TakesTheLowestBlockWithoutContent) {
  void* const most = takeBlock(16384 - 32);
  void* const lowest = takeBlock(0);
  EXPECT_EQ(offsetInArena(lowest), u64{32});
  EXPECT_EQ(giveBack(lowest), 0);
  EXPECT_EQ(giveBack(most), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapGivingBack, Takes1024BlocksWithoutContent) {
  static constinit void* blocks[1024] = {};
  for (void*& block : blocks) block = takeBlock(0);
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1024});
  EXPECT_EQ(takingFails(0), nOXDIAG100::kStatusHeapFull);
  for (u32 i = 0; i != 1024; i += 2) EXPECT_EQ(giveBack(blocks[i]), 0);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{512});
  for (u32 i = 1; i != 1025; i += 2) EXPECT_EQ(giveBack(blocks[i]), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapGivingBack, WorksWithAnErrorOnEntryAndKeepsIt) {
  void* const block = takeBlock(kRecordSize);
  i32 status = kEarlierError;
  theHeap().releaseMemoryBlock(block, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapGivingBack, KeepsAWarning) {
  void* const block = takeBlock(kRecordSize);
  i32 status = kEarlierWarning;
  theHeap().releaseMemoryBlock(block, status);
  EXPECT_EQ(status, kEarlierWarning);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapGivingBack, ABadBlockReplacesAWarning) {
  i32 status = kEarlierWarning;
  theHeap().releaseMemoryBlock(nullptr, status);
  EXPECT_EQ(status, kStatusHeapBadBlock);
}

TEST(StatusHeapGivingBack, ABadBlockKeepsAnEarlierError) {
  i32 status = kEarlierError;
  theHeap().releaseMemoryBlock(nullptr, status);
  EXPECT_EQ(status, kEarlierError);
}
