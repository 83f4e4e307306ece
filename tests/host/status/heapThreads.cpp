// Several threads on one status heap.

#include <atomic>
#include <thread>
#include <vector>

#include "startedHeap.h"
#include "vexk/sync.h"

#define OXDIAG_COMPONENT "heapThreads"
#include "oxdiagk/statusMacros.h"

using nOXDIAG100::kStatusHeapFull;
using nOXDIAG100::tStatus2;

namespace {

constexpr u32 kThreads = 4;
constexpr u32 kRounds = 3'000;

template <class tWork>
void runThreads(tWork work) {
  std::vector<std::thread> threads;
  for (u32 i = 0; i != kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

// Takes a few blocks, fills them, and gives them back whole.
void useBlocks(u32 thread, u32 round) {
  u8* blocks[5];
  i32 const size = static_cast<i32>(thread * 40 + round % 100);
  for (u8*& block : blocks) {
    block = static_cast<u8*>(takeBlock(size));
    if (block != nullptr) __builtin_memset(block, static_cast<int>(thread), static_cast<u32>(size));
  }
  for (u8* block : blocks) {
    if (block == nullptr) continue;
    for (i32 i = 0; i != size; ++i) ASSERT_EQ(block[i], thread);
    ASSERT_EQ(giveBack(block), 0);
  }
}

}  // namespace

TEST(StatusHeapThreads, BlocksOfSeveralThreadsDoNotMeet) {
  tStartedHeap const started;
  runThreads([](u32 thread) {
    for (u32 round = 0; round != kRounds; ++round) useBlocks(thread, round);
  });
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapThreads, EveryThreadHasItsOwnStatuses) {
  tStartedHeap const started;
  runThreads([](u32 thread) {
    i32 const code = -1000 - static_cast<i32>(thread);
    for (u32 round = 0; round != kRounds; ++round) {
      tStatus2 status;
      OXDIAG_SET_STATUS(status, code);
      tStatus2 const copy(status);
      ASSERT_EQ(copy.getCode(), code);
      ASSERT_STREQ(copy.getComponentName(), "heapThreads");
    }
  });
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusHeapThreads, AFullHeapRefusesEveryThread) {
  tStartedHeap const started;
  tFullHeap const full;
  runThreads([](u32) {
    for (u32 round = 0; round != kRounds; ++round) ASSERT_EQ(takingFails(0), kStatusHeapFull);
  });
}

TEST(StatusHeapThreads, ABlockIsWaitedFor) {
  constexpr u32 kTurns = 1'000;  // for who does not wait to come to an end
  tStartedHeap const started;
  auto* const lock = reinterpret_cast<iSync*>(heapRecord().lock);
  ASSERT_EQ(lock->acquire(kSyncWaitForever), 0);
  std::atomic<bool> isAsked = false;
  i32 status = kStatusHeapFull;
  std::thread other([&] {
    isAsked = true;
    status = takingFails(0);
  });
  while (!isAsked) std::this_thread::yield();
  for (u32 turn = 0; turn != kTurns; ++turn) std::this_thread::yield();
  EXPECT_EQ(lock->release(), 0);
  other.join();
  EXPECT_EQ(status, 0);
}
