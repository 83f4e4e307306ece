// What the status heap does not take back.

#include "conformance/harness.h"
#include "support/heapRecord.h"

using nOXDIAG100::kStatusHeapBadBlock;

namespace {

// The status of giving back what must not be taken, or 1 when anything changed.
i32 givingBadBlock(void* block) {
  tHeapRecord const before = heapRecord();
  i32 const status = giveBack(block);
  return isSameRecord(before, heapRecord()) ? status : 1;
}

void* moved(void* block, i64 bytes) {
  return reinterpret_cast<void*>(reinterpret_cast<i64>(block) + bytes);
}

// By somebody who writes into a block that he gave back; the sanitizer, which would end the test
// for it, does not look.
__attribute__((no_sanitize("address"), noinline)) void forgeHeader(void* block) {
  *headerOf(block) = {reinterpret_cast<u64>(headerOf(block)), 1, 0};
}

}  // namespace

TEST(StatusHeapBadBlocks, NullIsRefused) {
  EXPECT_EQ(givingBadBlock(nullptr), kStatusHeapBadBlock);
}

TEST(StatusHeapBadBlocks, AddressesOutsideTheArenaAreRefused) {
  char local[64];
  EXPECT_EQ(givingBadBlock(local), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(&theHeap()), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(atOffset(u64{0} - 16)), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(atOffset(kArenaSize + 16)), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(reinterpret_cast<void*>(~u64{0})), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(reinterpret_cast<void*>(~u64{15})), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(reinterpret_cast<void*>(u64{16})), kStatusHeapBadBlock);
}

TEST(StatusHeapBadBlocks, AddressesBelowTheFirstBlockAreRefused) {
  void* const most = takeBlock(16384 - 16);
  EXPECT_EQ(givingBadBlock(atOffset(0)), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(atOffset(16)), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(atOffset(31)), kStatusHeapBadBlock);
  EXPECT_EQ(giveBack(most), 0);
}

TEST(StatusHeapBadBlocks, TheEndOfTheArenaIsRefusedWhenNoBlockBeginsThere) {
  void* const block = takeBlock(kRecordSize);
  EXPECT_EQ(givingBadBlock(atOffset(kArenaSize)), kStatusHeapBadBlock);
  giveBack(block);
  EXPECT_EQ(givingBadBlock(atOffset(kArenaSize)), kStatusHeapBadBlock);
}

TEST(StatusHeapBadBlocks, AddressesBetweenUnitsAreRefused) {
  void* const block = takeBlock(kRecordSize);
  for (i64 bytes = 1; bytes != 16; ++bytes) {
    EXPECT_EQ(givingBadBlock(moved(block, bytes)), kStatusHeapBadBlock);
    EXPECT_EQ(givingBadBlock(moved(block, -bytes)), kStatusHeapBadBlock);
  }
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapBadBlocks, AddressesInsideABlockAreRefused) {
  void* const block = takeBlock(kRecordSize);
  ASSERT_NE(block, nullptr);
  constexpr u8 kContents[] = {0, 1, 0xFF};
  for (u8 content : kContents) {
    for (i64 i = 0; i != kRecordSize; ++i) static_cast<u8*>(block)[i] = content;
    for (i64 bytes = 16; bytes <= kRecordSize; bytes += 16) {
      EXPECT_EQ(givingBadBlock(moved(block, bytes)), kStatusHeapBadBlock);
    }
  }
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapBadBlocks, AddressesBehindANumberOfUnitsAreRefused) {
  void* const block = takeBlock(kRecordSize);
  ASSERT_NE(block, nullptr);
  void* const inside = moved(block, 32);
  *headerOf(inside) = {0, 1, 0};
  EXPECT_EQ(givingBadBlock(inside), kStatusHeapBadBlock);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapBadBlocks, ABlockGivenBackBeforeIsRefused) {
  void* const block = takeBlock(kRecordSize);
  giveBack(block);
  EXPECT_EQ(givingBadBlock(block), kStatusHeapBadBlock);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapBadBlocks, AFragmentIsRefused) {
  void* const first = takeBlock(kRecordSize);
  void* const second = takeBlock(kRecordSize);
  void* const third = takeBlock(kRecordSize);
  giveBack(second);
  EXPECT_EQ(givingBadBlock(second), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(atOffset(32)), kStatusHeapBadBlock);
  giveBack(first);
  giveBack(third);
}

TEST(StatusHeapBadBlocks, ABlockThatWasMergedIsRefused) {
  void* const high = takeBlock(kRecordSize);
  void* const middle = takeBlock(kRecordSize);
  void* const low = takeBlock(kRecordSize);
  void* const guard = takeBlock(0);
  giveBack(low);
  giveBack(middle);
  giveBack(high);
  EXPECT_EQ(givingBadBlock(low), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(middle), kStatusHeapBadBlock);
  EXPECT_EQ(givingBadBlock(high), kStatusHeapBadBlock);
  giveBack(guard);
}

TEST(StatusHeapBadBlocks, ABlockThatBecameTheInsideOfAnotherIsRefused) {
  void* const high = takeBlock(kRecordSize);
  void* const low = takeBlock(kRecordSize);
  giveBack(high);
  giveBack(low);
  void* const both = takeBlock(2 * 256 - 16);
  EXPECT_TRUE(both == low);
  if (both != low) {
    giveBack(both);
    return;
  }
  EXPECT_EQ(givingBadBlock(high), kStatusHeapBadBlock);
  EXPECT_EQ(giveBack(both), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapBadBlocks, ABlockThatReachesIntoAFreeOneIsRefused) {
  void* const high = takeBlock(kRecordSize);
  void* const middle = takeBlock(kRecordSize);
  void* const low = takeBlock(kRecordSize);
  giveBack(middle);
  if (low == nullptr || middle == nullptr) {
    giveBack(low);
    giveBack(high);
  }
  ASSERT_TRUE(low != nullptr && middle != nullptr);
  headerOf(low)->units += 1;
  EXPECT_EQ(givingBadBlock(low), kStatusHeapBadBlock);
  headerOf(low)->units -= 1;
  EXPECT_EQ(giveBack(low), 0);
  EXPECT_EQ(giveBack(high), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapBadBlocks, ABlockInAFreeOneIsRefused) {
  void* const high = takeBlock(kRecordSize);
  void* const low = takeBlock(kRecordSize);
  giveBack(low);
  for (i64 bytes = 16; bytes < 256; bytes += 16) {
    EXPECT_EQ(givingBadBlock(moved(low, bytes)), kStatusHeapBadBlock);
  }
  giveBack(high);
}

TEST(StatusHeapBadBlocks, AForgedHeaderInAFreeBlockIsRefused) {
  void* const high = takeBlock(kRecordSize);
  void* const low = takeBlock(kRecordSize);
  void* const guard = takeBlock(kRecordSize);
  giveBack(low);
  if (low == nullptr) {
    giveBack(guard);
    giveBack(high);
  }
  ASSERT_NE(low, nullptr);
  void* const forged = moved(low, 64);
  forgeHeader(forged);
  EXPECT_EQ(givingBadBlock(forged), kStatusHeapBadBlock);
  giveBack(guard);
  giveBack(high);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapBadBlocks, AForgedHeaderBetweenUnitsIsRefused) {
  void* const block = takeBlock(kRecordSize);
  ASSERT_NE(block, nullptr);
  void* const forged = moved(block, 24);
  u64 const header[] = {reinterpret_cast<u64>(forged) - 16, 1};
  __builtin_memcpy(moved(block, 8), header, sizeof header);
  EXPECT_EQ(givingBadBlock(forged), kStatusHeapBadBlock);
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapBadBlocks, ABlockThatReachesBehindTheArenaIsRefused) {
  void* const top = takeBlock(kRecordSize);
  ASSERT_NE(top, nullptr);
  constexpr u32 kUnits[] = {17, 1024, 0x10000000, 0xFFFFFFFF};
  for (u32 units : kUnits) {
    headerOf(top)->units = units;
    EXPECT_EQ(givingBadBlock(top), kStatusHeapBadBlock);
  }
  headerOf(top)->units = 16;
  EXPECT_EQ(giveBack(top), 0);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapBadBlocks, ABlockWithoutUnitsIsRefused) {
  void* const block = takeBlock(kRecordSize);
  ASSERT_NE(block, nullptr);
  headerOf(block)->units = 0;
  EXPECT_EQ(givingBadBlock(block), kStatusHeapBadBlock);
  headerOf(block)->units = 16;
  EXPECT_EQ(giveBack(block), 0);
}

TEST(StatusHeapBadBlocks, TheHeapWorksOnAfterEachOfThem) {
  void* const block = takeBlock(kRecordSize);
  giveBack(nullptr);
  giveBack(moved(block, 16));
  giveBack(block);
  giveBack(block);
  tFullHeap full;
  EXPECT_EQ(theHeap().getFreeUnits(), u32{0});
  full.giveAllBack();
  EXPECT_TRUE(isHeapUnused());
}
