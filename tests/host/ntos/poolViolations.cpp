// What the pool does not put up with.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "ntos/removeLock.h"
#include "ntoshost/pool.h"
#include "scribble.h"

namespace {

class PoolViolationsDeathTest : public testing::Test {
 protected:
  void SetUp() override { m_block = ExAllocatePoolWithTag(NonPagedPoolNx, 21, kTag); }
  void TearDown() override { free(); }

  void free() { ExFreePoolWithTag(m_block, kTag); }

  void* m_block;
};

void atIrql(KIRQL level, POOL_TYPE type) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
  ExFreePoolWithTag(ExAllocatePoolWithTag(type, 1, kTag), kTag);
  KeLowerIrql(previous);
}

void freeAtIrql(KIRQL level, void* block) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
  ExFreePoolWithTag(block, kTag);
}

TEST_F(PoolViolationsDeathTest, ASecondFreeIsNamedAsOne) {
  EXPECT_DEATH((free(), free()),
               "ntos: ExFreePoolWithTag: the block of 21 bytes with tag 'test' at 0x[0-9a-f]+ was "
               "freed twice\\.\n$");
}

TEST_F(PoolViolationsDeathTest, AWriteBehindTheBlockIsFoundWhenItIsFreed) {
  EXPECT_DEATH((scribble(m_block, 21), free()),
               "the block of 21 bytes with tag 'test' at 0x[0-9a-f]+ was overrun: byte 0 of "
               "the guard behind it has changed\\.");
}

TEST_F(PoolViolationsDeathTest, TheLastGuardByteBehindTheBlockIsWatched) {
  EXPECT_DEATH((scribble(m_block, 21 + 15), free()),
               "byte 15 of the guard behind it has changed\\.");
}

TEST_F(PoolViolationsDeathTest, AWriteBeforeTheBlockIsFoundWhenItIsFreed) {
  EXPECT_DEATH((scribble(m_block, -1), free()), "byte 15 of the guard before it has changed\\.");
}

TEST_F(PoolViolationsDeathTest, TheFirstGuardByteBeforeTheBlockIsWatched) {
  EXPECT_DEATH((scribble(m_block, -16), free()), "byte 0 of the guard before it has changed\\.");
}

TEST_F(PoolViolationsDeathTest, AWriteOutsideIsFoundWhileTheBlockIsStillOut) {
  EXPECT_DEATH((scribble(m_block, 22), ntoshost::verifyPool()),
               "verifyPool: the block of 21 bytes .* byte 1 of the guard");
}

TEST_F(PoolViolationsDeathTest, AWriteAfterTheFreeIsFoundByALook) {
  EXPECT_DEATH((free(), scribble(m_block, 20), ntoshost::verifyPool()),
               "byte 20 of the block of 21 bytes with tag 'test' at 0x[0-9a-f]+ was written after "
               "the block was freed\\.");
}

TEST_F(PoolViolationsDeathTest, AWriteAfterTheFreeIsFoundWhenTheMemoryIsGivenUp) {
  auto const freeScribbleAndGoOn = [&] {
    free();
    scribble(m_block, 0);
    for (int i = 0; i < 2000; ++i) atIrql(PASSIVE_LEVEL, NonPagedPoolNx);
  };
  EXPECT_DEATH(freeScribbleAndGoOn(),
               "ExFreePoolWithTag: byte 0 of the block of 21 bytes .* was "
               "written after the block was freed");
}

TEST_F(PoolViolationsDeathTest, AnotherTagIsRefused) {
  EXPECT_DEATH(ExFreePoolWithTag(m_block, ntosPoolTag("tesT")),
               "the block of 21 bytes with tag 'test' at 0x[0-9a-f]+ was freed with tag 'tesT'\\.");
}

TEST_F(PoolViolationsDeathTest, NoTagStandsForAnyTag) {
  u64 const before = ntoshost::outstandingBlocks();
  ExFreePoolWithTag(ExAllocatePoolWithTag(PagedPool, 1, kTag), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST_F(PoolViolationsDeathTest, ABlockWithARemoveLockThatIsHeldIsRefused) {
  void* const block = ExAllocatePoolWithTag(NonPagedPoolNx, sizeof(IO_REMOVE_LOCK), kTag);
  auto* const lock = static_cast<IO_REMOVE_LOCK*>(block);
  IoInitializeRemoveLock(lock, kTag);
  EXPECT_EQ(IoAcquireRemoveLock(lock, nullptr), STATUS_SUCCESS);
  EXPECT_DEATH(ExFreePoolWithTag(block, kTag),
               "the block of 32 bytes with tag 'test' at 0x[0-9a-f]+ has a remove lock that is "
               "held\\.");
  IoReleaseRemoveLock(lock, nullptr);
  ExFreePoolWithTag(block, kTag);
}

TEST_F(PoolViolationsDeathTest, AnAddressInsideABlockIsRefused) {
  EXPECT_DEATH(ExFreePoolWithTag(static_cast<u8*>(m_block) + 16, kTag),
               "ExFreePoolWithTag was given 0x[0-9a-f]+, which the pool never handed out");
}

TEST_F(PoolViolationsDeathTest, AForeignAddressIsRefused) {
  int local = 0;
  EXPECT_DEATH(ExFreePoolWithTag(&local, kTag), "which the pool never handed out");
}

TEST_F(PoolViolationsDeathTest, NullIsRefused) {
  EXPECT_DEATH(ExFreePoolWithTag(nullptr, kTag), "ntos: ExFreePoolWithTag was given null\\.\n$");
}

TEST_F(PoolViolationsDeathTest, NoBytesAreRefused) {
  EXPECT_DEATH(ExAllocatePoolWithTag(PagedPool, 0, kTag),
               "ntos: ExAllocatePoolWithTag was asked for 0 bytes\\.\n$");
}

TEST_F(PoolViolationsDeathTest, NoTagIsRefused) {
  EXPECT_DEATH(ExAllocatePoolWithTag(PagedPool, 1, 0), "was given no tag\\.");
}

TEST_F(PoolViolationsDeathTest, AnUnknownKindIsRefused) {
  EXPECT_DEATH(ExAllocatePoolWithTag(static_cast<POOL_TYPE>(7), 1, kTag),
               "was given the unknown pool type 7\\.");
}

TEST_F(PoolViolationsDeathTest, PagedMemoryIsForApcLevelAndBelow) {
  atIrql(APC_LEVEL, PagedPool);
  EXPECT_DEATH(
      atIrql(DISPATCH_LEVEL, PagedPool),
      "ntos: ExAllocatePoolWithTag\\(PagedPool\\) was called at IRQL 2 \\(DISPATCH_LEVEL\\); "
      "it may be called up to IRQL 1 \\(APC_LEVEL\\)\\.\n$");
}

TEST_F(PoolViolationsDeathTest, NonPagedMemoryIsForDispatchLevelAndBelow) {
  atIrql(DISPATCH_LEVEL, NonPagedPoolNx);
  EXPECT_DEATH(
      atIrql(3, NonPagedPoolNx),
      "ExAllocatePoolWithTag\\(NonPagedPoolNx\\) was called at IRQL 3 \\(device level\\); it "
      "may be called up to IRQL 2 \\(DISPATCH_LEVEL\\)\\.");
}

TEST_F(PoolViolationsDeathTest, MemoryThatCanBeExecutedIsRefused) {
  EXPECT_DEATH(ExAllocatePoolWithTag(NonPagedPool, 21, kTag),
               "ntos: ExAllocatePoolWithTag was asked for 21 bytes with tag 'test' that can be "
               "executed \\(NonPagedPool\\); it has to be NonPagedPoolNx\\.\n$");
}

TEST_F(PoolViolationsDeathTest, AFreeObeysTheLevelOfItsKind) {
  void* const paged = ExAllocatePoolWithTag(PagedPool, 1, kTag);
  EXPECT_DEATH(freeAtIrql(DISPATCH_LEVEL, paged),
               "ExFreePoolWithTag of PagedPool was called at "
               "IRQL 2");
  EXPECT_DEATH(freeAtIrql(HIGH_LEVEL, m_block),
               "ExFreePoolWithTag of NonPagedPool was called at "
               "IRQL 15");
  ExFreePoolWithTag(paged, kTag);
}

void leaveTwoBlocks() {
  ExAllocatePoolWithTag(PagedPool, 24, ntosPoolTag("left"));
  ExAllocatePoolWithTag(PagedPool, 40, kTag);
  ntoshost::requireNoOutstanding("oxdiagk");
}

TEST(PoolLeakDeathTest, WhatIsLeftBehindIsNamed) {
  EXPECT_DEATH(
      leaveTwoBlocks(),
      "ntos: oxdiagk left 2 pool blocks of together 64 bytes behind; the oldest has 24 bytes "
      "and tag 'left'\\.\n$");
}

TEST(PoolLeak, AnEmptyPoolIsInOrder) {
  ntoshost::requireNoOutstanding("nobody");
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

}  // namespace
