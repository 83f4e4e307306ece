// Threads on the status heap, in every order.

#include "schedules/tExplorer.h"
#include "support/heapRecord.h"
#include "trace/startedModules.h"

using nOXDIAG100::kStatusHeapFull;

namespace {

constexpr i32 kSize = 64;

// Its own bytes, which nobody else writes.
class tFilledBlock {
 public:
  explicit tFilledBlock(u8 filler) : content(filler), bytes(static_cast<u8*>(takeBlock(kSize))) {
    if (bytes != nullptr) __builtin_memset(bytes, content, kSize);
  }
  ~tFilledBlock() {
    if (bytes == nullptr) return;
    for (i32 i = 0; i < kSize; ++i) EXPECT_EQ(bytes[i], content);
    EXPECT_EQ(giveBack(bytes), 0);
  }
  tFilledBlock(tFilledBlock const&) = delete;
  tFilledBlock& operator=(tFilledBlock const&) = delete;

  bool isThere() const { return bytes != nullptr; }

 private:
  u8 const content;
  u8* const bytes;
};

class tTakers {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) { blocks[thread] = takeBlock(kSize); }
  void finish() {
    EXPECT_NE(blocks[0], nullptr);
    EXPECT_NE(blocks[1], nullptr);
    EXPECT_NE(blocks[0], blocks[1]);
    EXPECT_EQ(heapRecord().allocatedBlocks, 2u);
    for (void* block : blocks) EXPECT_EQ(giveBack(block), 0);
    EXPECT_TRUE(isHeapUnused());
  }

 private:
  void* blocks[kThreads] = {};
};

class tUsers {
 public:
  static constexpr unsigned kThreads = 3;

  void run(unsigned thread) {
    u8 const content = static_cast<u8>(thread + 1);
    tFilledBlock const first(content);
    tFilledBlock const second(content);
    EXPECT_TRUE(first.isThere());
    EXPECT_TRUE(second.isThere());
  }
  void finish() { EXPECT_TRUE(isHeapUnused()); }

 private:
};

// The same block given back by two threads, of whom one does so wrongly.
class tTwiceGivenBack {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned thread) { statuses[thread] = giveBack(block); }
  void finish() {
    EXPECT_NE(statuses[0] == 0, statuses[1] == 0);
    EXPECT_TRUE(isHeapUnused());
  }

 private:
  void* const block = takeBlock(kSize);
  i32 statuses[kThreads] = {};
};

// Room for one block, and two threads that want it.
class tLastPlace {
 public:
  static constexpr unsigned kThreads = 2;

  tLastPlace() { EXPECT_EQ(giveBack(freed), 0); }
  void run(unsigned thread) {
    tFilledBlock const block(static_cast<u8>(thread + 1));
    taken[thread] = block.isThere();
  }
  void finish() {
    EXPECT_TRUE(taken[0] || taken[1]);
    EXPECT_EQ(takingFails(kSize), 0);
    EXPECT_EQ(takingFails(kSize + 1), kStatusHeapFull);
  }

 private:
  void* const freed = takeBlock(kSize);
  tFullHeap const others;
  bool taken[kThreads] = {};
};

}  // namespace

TEST(HeapSchedules, TwoBlocksDoNotMeet) {
  explore<tTakers>("heapTakers", {tReach::kExhaustive, 0});
}

TEST(HeapSchedules, BlocksAreTheirThreadsOwnAndTheHeapIsWholeBehindThem) {
  explore<tUsers>("heapUsers", {1, 500});
}

TEST(HeapSchedules, ABlockIsGivenBackOnce) {
  explore<tTwiceGivenBack>("heapTwice", {3, 0});
}

TEST(HeapSchedules, TheLastPlaceIsForOneAtATime) {
  explore<tLastPlace>("heapLastPlace", {2, 500});
}
