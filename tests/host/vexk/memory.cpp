#include "vexk/memory.h"

#include <gtest/gtest.h>

#include "ntos/pool.h"
#include "ntoshost/executive.h"
#include "vexk/tMemBlockReferenceBase.h"

namespace {

struct tSeen {
  u64 blocks = 0;
  ntoshost::PoolBlock last{};
};

tSeen lookAtPool() {
  tSeen seen;
  ntoshost::visitOutstanding(
      [](void* context, ntoshost::PoolBlock const& block) {
        auto& result = *static_cast<tSeen*>(context);
        ++result.blocks;
        result.last = block;
      },
      &seen);
  return seen;
}

// The pool's view of the one block that exists after an allocation with these flags.
ntoshost::PoolBlock blockOf(size_t size, u32 flags) {
  i32 status = 0;
  void* memory = _memNewUsingCRT(size, flags, status);
  tSeen const seen = lookAtPool();
  EXPECT_EQ(1u, seen.blocks);
  EXPECT_EQ(memory, seen.last.address);
  _memDelete(memory);
  return seen.last;
}

struct tThing {
  VEX_MODULE_MEMORY
  i32 value = 7;
};

}  // namespace

TEST(VexkHostMemory, ScratchComesFromThePagedPool) {
  ntoshost::PoolBlock const block = blockOf(100, kMemScratch);
  EXPECT_EQ(PagedPool, block.type);
  EXPECT_EQ(100u, block.size);
}

TEST(VexkHostMemory, LongLivedComesFromTheNonPagedPoolThatDoesNotExecute) {
  EXPECT_EQ(NonPagedPoolNx, blockOf(100, kMemLongLived).type);
}

TEST(VexkHostMemory, OtherFlagsCountAsLongLived) {
  for (u32 flags : {1u, 2u, 3u, 5u, 8u, 0xFFFFFFFFu}) {
    EXPECT_EQ(NonPagedPoolNx, blockOf(16, flags).type) << flags;
  }
}

TEST(VexkHostMemory, BlocksCarryTheTagOfTheLayer) {
  EXPECT_EQ(ntosPoolTag("vexm"), blockOf(16, kMemLongLived).tag);
}

TEST(VexkHostMemory, GivingBackLeavesNothing) {
  (void)blockOf(16, kMemScratch);
  EXPECT_EQ(0u, lookAtPool().blocks);
}

TEST(VexkHostMemory, AnExhaustedPoolIsAStatus) {
  for (u32 flags : {kMemScratch, kMemLongLived}) {
    ntoshost::failFrom(ntoshost::kFaultMemory, 1);
    i32 status = 0;
    EXPECT_EQ(nullptr, _memNewUsingCRT(16, flags, status));
    EXPECT_EQ(-50352, status);
    ntoshost::clearFaults();
  }
}

TEST(VexkHostMemory, AnErrorOnEntryDoesNotEvenAskThePool) {
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  i32 status = -1;
  EXPECT_EQ(nullptr, _memNewUsingCRT(16, kMemScratch, status));
  EXPECT_EQ(0u, ntoshost::fallibleCallsSeen());
  EXPECT_EQ(-1, status);
}

TEST(VexkHostMemory, NewYieldsNullWhenThePoolIsExhausted) {
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  auto* thing = new tThing;
  auto* things = new tThing[2];
  ntoshost::clearFaults();
  EXPECT_EQ(nullptr, thing);
  EXPECT_EQ(nullptr, things);
}

TEST(VexkHostMemory, AReferenceGivesItsBlockBackAtTheEndOfItsLife) {
  {
    tMemBlockReferenceBase reference;
    i32 status = 0;
    reference.allocate(10, kMemScratch, status);
    reference.allocate(20, kMemLongLived, status);
    EXPECT_EQ(1u, lookAtPool().blocks);
    EXPECT_EQ(20u, lookAtPool().last.size);
  }
  EXPECT_EQ(0u, lookAtPool().blocks);
}

TEST(VexkHostMemory, AReferenceKeepsItsBlockWhenThePoolIsExhausted) {
  tMemBlockReferenceBase reference;
  i32 status = 0;
  reference.allocate(10, kMemScratch, status);
  void* const before = reference.getAddress();
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  reference.allocate(20, kMemScratch, status);
  ntoshost::clearFaults();
  EXPECT_EQ(kStatusOutOfMemory, status);
  EXPECT_EQ(before, reference.getAddress());
}

TEST(VexkHostMemory, MoveAssignmentLeavesOneBlock) {
  tMemBlockReferenceBase source;
  tMemBlockReferenceBase target;
  i32 status = 0;
  source.allocate(10, kMemScratch, status);
  target.allocate(20, kMemScratch, status);
  target = static_cast<tMemBlockReferenceBase&&>(source);
  EXPECT_EQ(1u, lookAtPool().blocks);
  EXPECT_EQ(10u, lookAtPool().last.size);
}
