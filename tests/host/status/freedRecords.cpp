// Who uses the record of a status after it was given back.

#include <gtest/gtest.h>

#include "startedHeap.h"

#define OXDIAG_COMPONENT "freedRecords"
#include "oxdiagk/statusMacros.h"

#if defined(__SANITIZE_ADDRESS__)
#define OXDIAG_TEST_POISONED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OXDIAG_TEST_POISONED 1
#endif
#endif

namespace {

constexpr i32 kSize = 240;
constexpr u8 kFreed = 0xDD;

// No sanitizer watches this one.
__attribute__((no_sanitize("address"), noinline)) i32 countOf(u8 value, void const* block,
                                                              i32 size) {
  i32 count = 0;
  for (i32 i = 0; i != size; ++i) count += static_cast<u8 const volatile*>(block)[i] == value;
  return count;
}

}  // namespace

TEST(FreedRecords, AreFilled) {
  tStartedHeap const started;
  void* const block = takeBlock(kSize);
  ASSERT_NE(block, nullptr);
  __builtin_memset(block, 7, kSize);
  EXPECT_EQ(giveBack(block), 0);
  EXPECT_EQ(countOf(kFreed, block, kSize), kSize);
}

TEST(FreedRecords, AreFilledToTheirEndsWhereverTheyAreTakenUp) {
  tStartedHeap const started;
  void* blocks[3];
  for (void*& block : blocks) block = takeBlock(kSize);
  for (void* const block : blocks) __builtin_memset(block, 7, kSize);
  giveBack(blocks[0]);  // merged with nothing, then with both
  giveBack(blocks[2]);
  giveBack(blocks[1]);
  i32 const whole = 3 * (kSize + 16) - 16;  // and the headers between
  EXPECT_EQ(countOf(kFreed, blocks[2], whole), whole);
}

TEST(FreedRecords, AreFilledBeforeTheyAreHandedOut) {
  tStartedHeap const started;
  i32 const whole = 16384 - 16;  // but for the header
  EXPECT_EQ(countOf(kFreed, atOffset(32), whole), whole);
}

TEST(FreedRecords, AreTheirNextOwnersToUse) {
  tStartedHeap const started;
  for (i32 size : {0, 1, 15, 16, 17, 240, 16384 - 16}) {
    for (i32 round = 0; round != 2; ++round) {
      void* const block = takeBlock(size);
      ASSERT_NE(block, nullptr);
      __builtin_memset(block, 7, static_cast<size_t>(size));
      EXPECT_EQ(countOf(7, block, size), size);
      EXPECT_EQ(giveBack(block), 0);
    }
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(FreedRecords, TheArenaIsAnyonesAfterTheStop) {
  for (i32 round = 0; round != 2; ++round) {
    tStartedHeap const started;
    EXPECT_EQ(takingFails(kSize), 0);
  }
}

#if OXDIAG_TEST_POISONED
using nOXDIAG100::tStatus2;

TEST(FreedRecordsDeathTest, AReadOfOneIsReported) {
  tStartedHeap const started;
  auto* const block = static_cast<u8 volatile*>(takeBlock(kSize));
  giveBack(const_cast<u8*>(block));
  EXPECT_DEATH(static_cast<void>(block[kSize - 1]), "use-after-poison");
}

TEST(FreedRecordsDeathTest, AWriteToOneIsReported) {
  tStartedHeap const started;
  auto* const block = static_cast<u8 volatile*>(takeBlock(kSize));
  giveBack(const_cast<u8*>(block));
  EXPECT_DEATH(block[8] = 1, "use-after-poison");
}

TEST(FreedRecordsDeathTest, WhatWasNeverHandedOutIsNobodys) {
  tStartedHeap const started;
  EXPECT_DEATH(static_cast<void>(*static_cast<u8 volatile*>(atOffset(32))), "use-after-poison");
}

TEST(FreedRecordsDeathTest, AStaleCopyOfAStatusIsReported) {
  tStartedHeap const started;
  alignas(tStatus2) u8 stale[sizeof(tStatus2)];
  {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, -61007);
    ASSERT_TRUE(status.hasDetail());
    __builtin_memcpy(stale, &status, sizeof(stale));
  }
  char text[tStatus2::kMaxTextSize];
  EXPECT_DEATH(reinterpret_cast<tStatus2*>(stale)->toString(text, sizeof(text)),
               "use-after-poison");
}
#endif
