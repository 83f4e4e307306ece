// Paged memory is out of reach at DISPATCH_LEVEL.

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "ntos/irql.h"
#include "ntoshost/pool.h"
#include "testDriver.h"

namespace {

constexpr u32 kTag = ntosPoolTag("page");

class Raised {
 public:
  explicit Raised(KIRQL level) { KeRaiseIrql(level, &m_previous); }
  ~Raised() { KeLowerIrql(m_previous); }
  Raised(Raised const&) = delete;
  Raised& operator=(Raised const&) = delete;

 private:
  KIRQL m_previous;
};

class PagedMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (!ntoshost::isPagedPoolGuarded())
      GTEST_SKIP() << "no protection keys, or a sanitizer is in the program";
  }

  static u8 volatile* take(size_t size, POOL_TYPE type = PagedPool) {
    return static_cast<u8*>(ExAllocatePoolWithTag(type, size, kTag));
  }
  static void give(u8 volatile* block) { ExFreePoolWithTag(const_cast<u8*>(block), kTag); }
};

using PagedMemoryDeathTest = PagedMemory;

u8 readAt(KIRQL level, u8 const volatile* byte) {
  Raised const raised(level);
  return *byte;
}

void writeAt(KIRQL level, u8 volatile* byte) {
  Raised const raised(level);
  *byte = 1;
}

TEST_F(PagedMemory, IsThereUpToApcLevel) {
  u8 volatile* const block = take(40);
  block[39] = 7;
  EXPECT_EQ(readAt(PASSIVE_LEVEL, block + 39), 7);
  EXPECT_EQ(readAt(APC_LEVEL, block + 39), 7);
  give(block);
}

TEST_F(PagedMemory, OtherMemoryIsThereAtAnyLevel) {
  u8 volatile* const block = take(40, NonPagedPoolNx);
  writeAt(DISPATCH_LEVEL, block);
  EXPECT_EQ(readAt(HIGH_LEVEL, block), 1);
  give(block);
}

TEST_F(PagedMemory, IsThereAgainBelow) {
  u8 volatile* const block = take(40);
  for (KIRQL level : {DISPATCH_LEVEL, HIGH_LEVEL}) {
    { Raised const raised(level); }
    block[0] = level;
    EXPECT_EQ(block[0], level);
  }
  give(block);
}

TEST_F(PagedMemory, SizesOfAllKindsAreWholeAndApart) {
  constexpr size_t kSizes[] = {1, 15, 16, 17, 100, 4000, 4096, 65'000, 66'000, 1 << 20, 5 << 20};
  u8 volatile* blocks[std::size(kSizes)];
  for (size_t i = 0; i < std::size(kSizes); ++i) {
    blocks[i] = take(kSizes[i]);
    for (size_t at = 0; at < kSizes[i]; ++at) blocks[i][at] = static_cast<u8>(i);
  }
  for (size_t i = 0; i < std::size(kSizes); ++i) {
    for (size_t at = 0; at < kSizes[i]; ++at) ASSERT_EQ(blocks[i][at], i);
    give(blocks[i]);
  }
  ntoshost::verifyPool();
}

// The pool looks at paged blocks whatever is asked for.
TEST_F(PagedMemory, ThePoolWorksAtDispatchLevel) {
  u8 volatile* const paged = take(40);
  {
    Raised const raised(DISPATCH_LEVEL);
    for (int i = 0; i < 3000; ++i) give(take(40, NonPagedPoolNx));
    ntoshost::verifyPool();
  }
  give(paged);
}

// One thread is at DISPATCH_LEVEL all the time, another one uses the block.
TEST_F(PagedMemory, OtherThreadsUseItMeanwhile) {
  u8 volatile* const block = take(40);
  std::atomic<bool> isRaised = false;
  std::atomic<bool> isDone = false;
  std::thread other([&] {
    Raised const raised(DISPATCH_LEVEL);
    isRaised = true;
    while (!isDone) std::this_thread::yield();
  });
  while (!isRaised) std::this_thread::yield();
  for (int i = 0; i < 100'000; ++i) block[i % 40] = static_cast<u8>(i);
  EXPECT_EQ(block[39], static_cast<u8>(99'999));
  isDone = true;
  other.join();
  give(block);
}

// A thread has the rights of the one that made it.
TEST_F(PagedMemory, AThreadMadeAtDispatchLevelUsesIt) {
  u8 volatile* const block = take(40);
  block[0] = 3;
  int seen = 0;
  {
    Raised const raised(DISPATCH_LEVEL);
    std::thread([&] { seen = block[0]; }).join();
  }
  EXPECT_EQ(seen, 3);
  give(block);
}

TEST_F(PagedMemoryDeathTest, ReadingAtDispatchLevelIsTold) {
  u8 volatile* const block = take(40);
  EXPECT_DEATH(readAt(DISPATCH_LEVEL, block + 5),
               "ntos: Byte 5 of the block of 40 bytes of PagedPool with tag 'page' at 0x[0-9a-f]+ "
               "was touched at IRQL 2 \\(DISPATCH_LEVEL\\) by no driver\\.\n$");
  give(block);
}

TEST_F(PagedMemoryDeathTest, WritingAtAnyLevelAboveIsTold) {
  u8 volatile* const block = take(100'000);
  EXPECT_DEATH(
      writeAt(HIGH_LEVEL, block + 99'999),
      "Byte 99999 of the block of 100000 bytes of PagedPool .* at IRQL 15 \\(device level\\)");
  give(block);
}

TEST_F(PagedMemoryDeathTest, WhatIsBesideABlockIsToldWithoutOne) {
  u8 volatile* const block = take(40);
  EXPECT_DEATH(readAt(DISPATCH_LEVEL, block + 40),
               "ntos: Paged memory at 0x[0-9a-f]+ was touched at IRQL 2 \\(DISPATCH_LEVEL\\) by no "
               "driver\\.");
  give(block);
}

TEST_F(PagedMemoryDeathTest, FreedPagedMemoryIsToldToo) {
  u8 volatile* const block = take(40);
  give(block);
  EXPECT_DEATH(readAt(DISPATCH_LEVEL, block), "Byte 0 of the block of 40 bytes of PagedPool");
}

TEST_F(PagedMemoryDeathTest, OneThreadAmongOthersIsTold) {
  u8 volatile* const block = take(40);
  EXPECT_DEATH(std::thread([&] { writeAt(DISPATCH_LEVEL, block); }).join(),
               "was touched at IRQL 2");
  block[0] = 1;
  give(block);
}

class PagedDriverDeathTest : public DriverTest {};

TEST_F(PagedDriverDeathTest, TheDriverIsNamed) {
  if (!ntoshost::isPagedPoolGuarded())
    GTEST_SKIP() << "no protection keys, or a sanitizer is in the program";
  DEVICE_OBJECT* const device = makeDevice([](DEVICE_OBJECT*, IRP* request) {
    u8 volatile* const block = static_cast<u8*>(ExAllocatePoolWithTag(PagedPool, 8, kTag));
    writeAt(DISPATCH_LEVEL, block);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(device), "was touched at IRQL 2 .* by the driver \\\\Driver\\\\tester\\.");
  IoDeleteDevice(device);
}

}  // namespace
