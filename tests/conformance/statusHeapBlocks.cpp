// Taking blocks from the status heap.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"

using nOXDIAG100::kStatusHeapFull;
using nOXDIAG100::tStatus2Heap;

namespace {

constexpr u32 kRecordUnits = 16;
constexpr u32 kMostRecords = 64;
constexpr i32 kLargest = 16384 - 16;  // the whole pool in one block
constexpr i32 kMostNegative = -2147483647 - 1;
constexpr i32 kMostPositive = 2147483647;

u32 unitsTakenBy(i32 size) {
  void* const block = takeBlock(size);
  u32 const units = theHeap().getUsedUnits();
  giveBack(block);
  return units;
}

// The status of an attempt that must fail, or 1 when it did anything.
i32 attemptThatChangesNothing(i32 size) {
  tHeapRecord const before = heapRecord();
  i32 status = 0;
  void* const block = theHeap().allocateMemoryBlock(size, status);
  return block == nullptr && isSameRecord(before, heapRecord()) ? status : 1;
}

}  // namespace

TEST(StatusHeap, StartsAsOneFreeBlockOf1024Units) {
  EXPECT_EQ(theHeap().getFreeUnits(), u32{1024});
  EXPECT_EQ(theHeap().getUsedUnits(), u32{0});
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{0});
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
}

TEST(StatusHeap, KeepsItsControlRecordInOrder) {
  tHeapRecord const record = heapRecord();
  EXPECT_EQ(record.poolSize, u32{16384});
  EXPECT_EQ(record.unitSize, u32{16});
  EXPECT_EQ(record.totalUnits, u32{1024});
  EXPECT_EQ(record.freeUnits, u32{1024});
  EXPECT_EQ(record.usedUnits, u32{0});
  EXPECT_EQ(record.allocatedBlocks, u32{0});
  EXPECT_EQ(record.freeBlocks, u32{1});
  EXPECT_EQ(record.firstUsableUnit, record.arena + 16);
  EXPECT_TRUE(record.rover == record.arena || record.rover == record.firstUsableUnit);
  EXPECT_NE(record.lock, u64{0});
}

TEST(StatusHeap, LinksTheAnchorAndTheFreeBlockToEachOther) {
  tHeapRecord const record = heapRecord();
  tHeapHeader const* const anchor = headerOf(atOffset(16));
  tHeapHeader const* const block = headerOf(atOffset(32));
  EXPECT_EQ(anchor->units, u32{0});
  EXPECT_EQ(anchor->next, record.firstUsableUnit);
  EXPECT_EQ(block->units, u32{1024});
  EXPECT_EQ(block->next, record.arena);
}

TEST(StatusHeap, IsFoundWithoutTouchingTheStatus) {
  i32 status = kEarlierError;
  EXPECT_TRUE(tStatus2Heap::getHeap(status) != nullptr);
  EXPECT_EQ(status, kEarlierError);
  status = kEarlierWarning;
  EXPECT_TRUE(tStatus2Heap::getHeap(status) == &theHeap());
  EXPECT_EQ(status, kEarlierWarning);
}

TEST(StatusHeap, GivesTheFirstBlockFromTheUpperEnd) {
  void* const block = takeBlock(kRecordSize);
  EXPECT_EQ(offsetInArena(block), u64{16160});
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeap, GivesEachNextBlockBelowTheOneBefore) {
  void* const first = takeBlock(kRecordSize);
  void* const second = takeBlock(kRecordSize);
  EXPECT_EQ(offsetInArena(second), u64{16160 - 256});
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  giveBack(first);
  giveBack(second);
}

TEST(StatusHeap, HandsTheUpperPartOutWithAHeaderOfItsOwn) {
  void* const block = takeBlock(kRecordSize);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(headerOf(block)->units, kRecordUnits);
  EXPECT_EQ(headerOf(atOffset(32))->units, u32{1024} - kRecordUnits);
  giveBack(block);
}

TEST(StatusHeap, TakesOneUnitForABlockOfSizeZero) {
  EXPECT_EQ(unitsTakenBy(0), u32{1});
}

TEST(StatusHeap, TakesAUnitMoreForEveryStarted16Bytes) {
  EXPECT_EQ(unitsTakenBy(1), u32{2});
  EXPECT_EQ(unitsTakenBy(15), u32{2});
  EXPECT_EQ(unitsTakenBy(16), u32{2});
  EXPECT_EQ(unitsTakenBy(17), u32{3});
  EXPECT_EQ(unitsTakenBy(32), u32{3});
  EXPECT_EQ(unitsTakenBy(33), u32{4});
  EXPECT_EQ(unitsTakenBy(239), u32{16});
  EXPECT_EQ(unitsTakenBy(240), u32{16});
  EXPECT_EQ(unitsTakenBy(241), u32{17});
}

TEST(StatusHeap, CountsUnitsAndBlocks) {
  void* const record = takeBlock(kRecordSize);
  void* const nothing = takeBlock(0);
  EXPECT_EQ(theHeap().getUsedUnits(), u32{17});
  EXPECT_EQ(theHeap().getFreeUnits(), u32{1024 - 17});
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{2});
  giveBack(record);
  giveBack(nothing);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, AlignsEveryBlockTo16Bytes) {
  static constinit void* blocks[64] = {};
  for (i32 size = 0; size != 64; ++size) blocks[size] = takeBlock(size);
  for (void* block : blocks) EXPECT_EQ(reinterpret_cast<u64>(block) % 16, u64{0});
  for (void* block : blocks) giveBack(block);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, Holds64RecordsOf240BytesAndNoMore) {
  static constinit void* blocks[kMostRecords] = {};
  for (void*& block : blocks) {
    block = takeBlock(kRecordSize);
    EXPECT_TRUE(block != nullptr);
  }
  EXPECT_EQ(theHeap().getFreeUnits(), u32{0});
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{0});
  EXPECT_EQ(theHeap().getAllocatedBlocks(), kMostRecords);
  EXPECT_EQ(takingFails(kRecordSize), kStatusHeapFull);
  EXPECT_EQ(takingFails(0), kStatusHeapFull);
  for (void* block : blocks) giveBack(block);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, FullLeavesAnEarlierErrorUntouched) {
  tFullHeap const full;
  i32 status = kEarlierError;
  EXPECT_TRUE(theHeap().allocateMemoryBlock(kRecordSize, status) == nullptr);
  EXPECT_EQ(status, kEarlierError);
}

TEST(StatusHeap, FullReplacesAWarning) {
  tFullHeap const full;
  i32 status = kEarlierWarning;
  EXPECT_TRUE(theHeap().allocateMemoryBlock(0, status) == nullptr);
  EXPECT_EQ(status, kStatusHeapFull);
}

TEST(StatusHeap, GivesNothingWithAnErrorOnEntry) {
  tHeapRecord const before = heapRecord();
  i32 status = kEarlierError;
  EXPECT_TRUE(theHeap().allocateMemoryBlock(kRecordSize, status) == nullptr);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_TRUE(isSameRecord(before, heapRecord()));
}

TEST(StatusHeap, GivesABlockWithAWarningOnEntryAndKeepsTheWarning) {
  i32 status = kEarlierWarning;
  void* const block = theHeap().allocateMemoryBlock(kRecordSize, status);
  EXPECT_TRUE(block != nullptr);
  EXPECT_EQ(status, kEarlierWarning);
  giveBack(block);
}

TEST(StatusHeap, CanBeOneBlock) {
  void* const block = takeBlock(kLargest);
  EXPECT_EQ(offsetInArena(block), u64{32});
  EXPECT_EQ(theHeap().getFreeUnits(), u32{0});
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{0});
  EXPECT_EQ(giveBack(block), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, HasNoBlockOfAByteMoreThanThePool) {
  EXPECT_EQ(attemptThatChangesNothing(kLargest + 1), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(16384), kStatusHeapFull);
}

TEST(StatusHeap, HasNoBlockOfANegativeSize) {
  EXPECT_EQ(attemptThatChangesNothing(-1), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(-16), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(-17), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(-32), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(kMostNegative), kStatusHeapFull);
  EXPECT_EQ(attemptThatChangesNothing(kMostNegative + 1), kStatusHeapFull);
}

TEST(StatusHeap, HasNoBlockOfASizeNearTheLargestNumber) {
  for (i32 less = 0; less != 40; ++less) {
    EXPECT_EQ(attemptThatChangesNothing(kMostPositive - less), kStatusHeapFull);
  }
}

TEST(StatusHeap, FailingChangesNothing) {
  void* const low = takeBlock(kLargest / 2);
  ASSERT_NE(low, nullptr);
  EXPECT_EQ(attemptThatChangesNothing(kLargest / 2 + 16), kStatusHeapFull);
  giveBack(low);
  tFullHeap const full;
  EXPECT_EQ(attemptThatChangesNothing(0), kStatusHeapFull);
}

TEST(StatusHeap, UnlinksABlockThatFitsExactly) {
  void* const first = takeBlock(kRecordSize);
  void* const second = takeBlock(kRecordSize);
  giveBack(first);
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{2});
  tFullHeap full;
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{0});
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{3});
  full.giveAllBack();
  giveBack(second);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, LeavesAFragmentOfOneUnitWhenABlockFitsButForThat) {
  void* const first = takeBlock(kRecordSize);
  void* const second = takeBlock(kRecordSize);
  giveBack(first);
  void* const most = takeBlock(kLargest - 2 * 256);
  EXPECT_EQ(theHeap().getFreeUnits(), kRecordUnits);
  void* const again = takeBlock(kRecordSize - 16);
  EXPECT_EQ(theHeap().getFreeUnits(), u32{1});
  EXPECT_EQ(theHeap().getFreeBlocks(), u32{1});
  void* const last = takeBlock(0);
  EXPECT_TRUE(last != nullptr);
  giveBack(most);
  giveBack(again);
  giveBack(second);
  giveBack(last);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, BlocksDoNotOverlap) {
  static constinit u8* blocks[kMostRecords] = {};
  for (u32 i = 0; i != kMostRecords; ++i) {
    blocks[i] = static_cast<u8*>(takeBlock(kRecordSize));
    if (blocks[i] == nullptr) {
      for (u32 taken = 0; taken != i; ++taken) giveBack(blocks[taken]);
    }
    ASSERT_TRUE(blocks[i] != nullptr);
    for (i32 at = 0; at != kRecordSize; ++at) blocks[i][at] = static_cast<u8>(i + 1);
  }
  u32 damaged = 0;
  for (u32 i = 0; i != kMostRecords; ++i) {
    for (i32 at = 0; at != kRecordSize; ++at) damaged += blocks[i][at] == i + 1 ? 0 : 1;
    EXPECT_EQ(giveBack(blocks[i]), 0);
  }
  EXPECT_EQ(damaged, u32{0});
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeap, PrintsNothingAndChangesNothing) {
  tHeapRecord const before = heapRecord();
  theHeap().printHeap();
  EXPECT_TRUE(isSameRecord(before, heapRecord()));
}
