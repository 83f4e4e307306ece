// The pool of the executive: taking, giving back, counting.

#include "ntoshost/pool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ntoshost/faults.h"
#include "scribble.h"

namespace {

constexpr size_t kMostBytes = size_t{1} << 30;

std::vector<ntoshost::PoolBlock> outstanding() {
  std::vector<ntoshost::PoolBlock> blocks;
  auto const visit = [](void* context, ntoshost::PoolBlock const& block) {
    static_cast<std::vector<ntoshost::PoolBlock>*>(context)->push_back(block);
  };
  ntoshost::visitOutstanding(visit, &blocks);
  return blocks;
}

TEST(Pool, ATagReadsInMemoryAsItsText) {
  u32 const tag = ntosPoolTag("oxdk");
  EXPECT_EQ(std::string(reinterpret_cast<char const*>(&tag), 4), "oxdk");
}

TEST(Pool, EveryKindGivesMemoryAlignedToSixteenBytes) {
  for (POOL_TYPE type : {PagedPool, NonPagedPoolNx}) {
    for (size_t size : {1u, 15u, 16u, 17u, 4096u}) {
      void* const block = ExAllocatePoolWithTag(type, size, kTag);
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(reinterpret_cast<u64>(block) % 16, 0u) << size << " bytes of kind " << type;
      ExFreePoolWithTag(block, kTag);
    }
  }
}

TEST(Pool, FreshMemoryIsFilledWithItsPattern) {
  u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(NonPagedPoolNx, 33, kTag));
  for (size_t at = 0; at < 33; ++at) EXPECT_EQ(block[at], 0xA5) << "byte " << at;
  ExFreePoolWithTag(block, kTag);
}

TEST(Pool, EveryByteAskedForCanBeWritten) {
  for (size_t size = 1; size <= 64; ++size) {
    u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(PagedPool, size, kTag));
    for (size_t at = 0; at < size; ++at) block[at] = static_cast<u8>(at);
    ExFreePoolWithTag(block, kTag);
  }
}

TEST(Pool, AFreedBlockIsNotHandedOutAtOnce) {
  void* const first = ExAllocatePoolWithTag(NonPagedPoolNx, 48, kTag);
  ExFreePoolWithTag(first, kTag);
  void* const second = ExAllocatePoolWithTag(NonPagedPoolNx, 48, kTag);
  EXPECT_NE(first, second);
  ExFreePoolWithTag(second, kTag);
}

TEST(Pool, OutstandingBlocksAndBytesAreCounted) {
  u64 const blocks = ntoshost::outstandingBlocks();
  u64 const bytes = ntoshost::outstandingBytes();
  void* const first = ExAllocatePoolWithTag(NonPagedPoolNx, 100, kTag);
  void* const second = ExAllocatePoolWithTag(PagedPool, 23, kTag);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks + 2);
  EXPECT_EQ(ntoshost::outstandingBytes(), bytes + 123);
  ExFreePoolWithTag(first, kTag);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks + 1);
  EXPECT_EQ(ntoshost::outstandingBytes(), bytes + 23);
  ExFreePoolWithTag(second, kTag);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  EXPECT_EQ(ntoshost::outstandingBytes(), bytes);
}

TEST(Pool, TheFootprintIsInUnitsWithAHeadForEachBlock) {
  u64 const before = ntoshost::outstandingFootprint();
  void* const one = ExAllocatePoolWithTag(NonPagedPoolNx, 1, kTag);
  void* const two = ExAllocatePoolWithTag(NonPagedPoolNx, 17, kTag);
  EXPECT_EQ(ntoshost::outstandingFootprint(), before + 32 + 48);
  ExFreePoolWithTag(one, kTag);
  ExFreePoolWithTag(two, kTag);
  EXPECT_EQ(ntoshost::outstandingFootprint(), before);
}

TEST(Pool, TheLargestFootprintIsThatSinceTheWatchBegan) {
  void* const kept = ExAllocatePoolWithTag(NonPagedPoolNx, 16, kTag);
  ntoshost::watchFootprint();
  u64 const before = ntoshost::outstandingFootprint();
  EXPECT_EQ(ntoshost::peakFootprint(), before);
  ExFreePoolWithTag(ExAllocatePoolWithTag(NonPagedPoolNx, 160, kTag), kTag);
  ExFreePoolWithTag(ExAllocatePoolWithTag(NonPagedPoolNx, 16, kTag), kTag);
  EXPECT_EQ(ntoshost::peakFootprint(), before + 176);
  ntoshost::watchFootprint();
  EXPECT_EQ(ntoshost::peakFootprint(), before);
  ExFreePoolWithTag(kept, kTag);
}

TEST(Pool, OutstandingBlocksAreListedOldestFirstWithAllTheyAre) {
  void* const first = ExAllocatePoolWithTag(PagedPool, 5, ntosPoolTag("aaaa"));
  void* const dropped = ExAllocatePoolWithTag(PagedPool, 6, kTag);
  void* const second = ExAllocatePoolWithTag(NonPagedPoolNx, 7, ntosPoolTag("bbbb"));
  ExFreePoolWithTag(dropped, kTag);
  std::vector<ntoshost::PoolBlock> const blocks = outstanding();
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[0].address, first);
  EXPECT_EQ(blocks[0].size, 5u);
  EXPECT_EQ(blocks[0].tag, ntosPoolTag("aaaa"));
  EXPECT_EQ(blocks[0].type, PagedPool);
  EXPECT_EQ(blocks[1].address, second);
  EXPECT_EQ(blocks[1].type, NonPagedPoolNx);
  EXPECT_EQ(blocks[1].serial, blocks[0].serial + 2);
  ExFreePoolWithTag(first, ntosPoolTag("aaaa"));
  ExFreePoolWithTag(second, ntosPoolTag("bbbb"));
}

TEST(Pool, ABlockThatIsGivenBackIsShownAsItWasLeft) {
  std::string seen;
  u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(NonPagedPoolNx, 4, kTag));
  memcpy(block, "left", 4);
  auto const visit = [](void* context, ntoshost::PoolBlock const& shown) {
    EXPECT_EQ(shown.tag, kTag);
    static_cast<std::string*>(context)->append(static_cast<char const*>(shown.address), shown.size);
  };
  ntoshost::visitGivenBack(visit, &seen);
  ExFreePoolWithTag(block, kTag);
  EXPECT_EQ(seen, "left");
  ntoshost::visitGivenBack(nullptr, nullptr);
  ExFreePoolWithTag(ExAllocatePoolWithTag(NonPagedPoolNx, 4, kTag), kTag);
  EXPECT_EQ(seen, "left");
}

TEST(Pool, TheReportHasOneLineABlock) {
  void* const block = ExAllocatePoolWithTag(PagedPool, 5, ntosPoolTag("a\x01z "));
  testing::internal::CaptureStderr();
  ntoshost::reportOutstanding();
  std::string const report = testing::internal::GetCapturedStderr();
  EXPECT_NE(report.find(": 5 bytes of PagedPool, tag 'a?z ', at 0x"), std::string::npos) << report;
  EXPECT_EQ(report.find('\n'), report.size() - 1) << report;
  ExFreePoolWithTag(block, ntosPoolTag("a\x01z "));
}

TEST(Pool, MoreThanTheWholePoolIsNotGiven) {
  EXPECT_EQ(ExAllocatePoolWithTag(NonPagedPoolNx, kMostBytes + 1, kTag), nullptr);
  EXPECT_EQ(ExAllocatePoolWithTag(NonPagedPoolNx, SIZE_MAX, kTag), nullptr);
}

TEST(Pool, TheLimitIsForAllBlocksTogether) {
  void* const block = ExAllocatePoolWithTag(NonPagedPoolNx, 1, kTag);
  EXPECT_EQ(ExAllocatePoolWithTag(NonPagedPoolNx, kMostBytes, kTag), nullptr);
  ExFreePoolWithTag(block, kTag);
}

TEST(Pool, ManyBlocksComeAndGoInAnyOrder) {
  std::vector<void*> blocks;
  u32 random = 1;
  for (int step = 0; step < 20'000; ++step) {
    random = random * 1664525 + 1013904223;
    if (blocks.empty() || random >> 31 == 0) {
      blocks.push_back(ExAllocatePoolWithTag(NonPagedPoolNx, 1 + (random >> 20 & 255), kTag));
      continue;
    }
    std::swap(blocks[(random >> 8) % blocks.size()], blocks.back());
    ExFreePoolWithTag(blocks.back(), kTag);
    blocks.pop_back();
  }
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks.size());
  ntoshost::verifyPool();
  for (void* block : blocks) ExFreePoolWithTag(block, kTag);
  ntoshost::requireNoOutstanding("this test");
}

}  // namespace
