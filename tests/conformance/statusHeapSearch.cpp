// Where the status heap looks for a block first, and the heap against a model of it.

#include "conformance/harness.h"
#include "support/heapRecord.h"
#include "support/modelPool.h"

using nOXDIAG100::kStatusHeapFull;

namespace {

// The heap filled with 64 blocks of 16 units, some of which become fragments. Block 0 lies lowest.
class tFragments {
 public:
  static constexpr u32 kCount = 64;

  tFragments() {
    for (u32 i = 0; i != kCount; ++i) take();
  }
  ~tFragments() {
    for (u32 i = 0; i != kCount; ++i) {
      if (isTaken[i]) free(i);
    }
  }
  tFragments(tFragments const&) = delete;
  tFragments& operator=(tFragments const&) = delete;

  void free(u32 index) {
    giveBack(blockAt(index));
    isTaken[index] = false;
  }

  // The index of the block that an allocation yields.
  u32 take() {
    u32 const index = static_cast<u32>((offsetInArena(takeBlock(kRecordSize)) - 32) / 256);
    if (index < kCount) isTaken[index] = true;
    return index;
  }

  static void* blockAt(u32 index) { return atOffset(32 + u64{256} * index); }

  static bool roverIsAt(u32 index) {
    return heapRecord().rover == reinterpret_cast<u64>(headerOf(blockAt(index)));
  }

 private:
  bool isTaken[kCount] = {};
};

bool roverIsAtAnchor() {
  return heapRecord().rover == heapRecord().arena;
}

class tRandom {
 public:
  explicit tRandom(u64 seed) : state(seed) {}
  u32 below(u32 limit) {
    state = state * 6364136223846793005 + 1442695040888963407;
    return static_cast<u32>((state >> 33) % limit);
  }

 private:
  u64 state;
};

// Sizes of all magnitudes, small ones mostly.
u32 randomSize(tRandom& random) {
  switch (random.below(8)) {
    case 0:
      return random.below(4000);
    case 1:
      return 0;
    case 2:
      return 240;
    default:
      return random.below(200);
  }
}

// The heap and the model of it, given the same work.
class tHeapAndModel {
 public:
  static constexpr u32 kSlots = 96;

  explicit tHeapAndModel(tModelPool& pool) : model(pool) {}

  void take(u32 slot, u32 size) {
    u32 const unit = model.take(tModelPool::unitsOf(size));
    void* const block = takeBlock(static_cast<i32>(size));
    blocks[slot] = block;
    bool const agrees =
        unit == tModelPool::kNone ? block == nullptr : block == atOffset((u64{unit} + 2) * 16);
    if (!agrees) ++differences;
  }

  void give(u32 slot) {
    model.give(static_cast<u32>(offsetInArena(blocks[slot]) / 16) - 2);
    if (giveBack(blocks[slot]) != 0) ++differences;
    blocks[slot] = nullptr;
  }

  void compare() {
    tHeapRecord const record = heapRecord();
    bool const agrees = record.freeUnits == model.countFreeUnits() &&
                        record.usedUnits == 1024 - record.freeUnits &&
                        record.freeBlocks == model.countFragments() &&
                        record.allocatedBlocks == model.getAllocatedBlocks() &&
                        record.rover == record.arena + u64{16} * model.getRover();
    if (!agrees) ++differences;
  }

  void* blocks[kSlots] = {};
  u32 differences = 0;

 private:
  tModelPool& model;
};

constinit tModelPool modelPool;

}  // namespace

TEST(StatusHeapSearch, BeginsBehindTheRover) {
  tFragments heap;
  heap.free(10);
  heap.free(30);
  heap.free(50);
  EXPECT_TRUE(heap.roverIsAt(30));
  EXPECT_EQ(heap.take(), u32{50});
}

TEST(StatusHeapSearch, GoesOnAtTheLowestFragmentBehindTheHighest) {
  tFragments heap;
  heap.free(10);
  heap.free(30);
  heap.free(50);
  EXPECT_EQ(heap.take(), u32{50});
  EXPECT_TRUE(heap.roverIsAt(30));
  EXPECT_EQ(heap.take(), u32{10});
  EXPECT_TRUE(roverIsAtAnchor());
  EXPECT_EQ(heap.take(), u32{30});
}

TEST(StatusHeapSearch, LooksAtTheBlockOfTheRoverLast) {
  tFragments heap;
  heap.free(10);
  heap.free(50);
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{50});
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{10});
  EXPECT_TRUE(roverIsAtAnchor());
}

TEST(StatusHeapSearch, PassesFragmentsThatAreTooSmall) {
  tFragments heap;
  heap.free(10);
  heap.free(30);
  heap.free(31);
  heap.free(50);
  EXPECT_TRUE(heap.roverIsAt(30));
  void* const wide = takeBlock(2 * 256 - 16);
  EXPECT_TRUE(wide == tFragments::blockAt(30));
  EXPECT_TRUE(heap.roverIsAt(10));
  giveBack(wide);
}

TEST(StatusHeapSearch, TheRoverGoesInFrontOfTheBlockUsed) {
  tFragments heap;
  heap.free(10);
  heap.free(30);
  EXPECT_TRUE(heap.roverIsAt(10));
  heap.free(20);
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{20});
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{30});
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{10});
}

TEST(StatusHeapSearch, TheRoverGoesInFrontOfTheBlockGivenBack) {
  tFragments heap;
  heap.free(40);
  EXPECT_TRUE(roverIsAtAnchor());
  heap.free(42);
  EXPECT_TRUE(heap.roverIsAt(40));
  heap.free(41);
  EXPECT_TRUE(heap.roverIsAt(40));
  heap.free(20);
  EXPECT_TRUE(roverIsAtAnchor());
  EXPECT_EQ(heap.take(), u32{20});
  EXPECT_EQ(heap.take(), u32{42});
  EXPECT_EQ(heap.take(), u32{41});
  EXPECT_EQ(heap.take(), u32{40});
}

TEST(StatusHeapSearch, FailingLeavesTheRoverWhereItIs) {
  tFragments heap;
  heap.free(10);
  heap.free(50);
  EXPECT_EQ(takingFails(kRecordSize + 1), kStatusHeapFull);
  EXPECT_TRUE(heap.roverIsAt(10));
  EXPECT_EQ(heap.take(), u32{50});
  EXPECT_EQ(heap.take(), u32{10});
}

TEST(StatusHeapSearch, FailsWhenNoFragmentIsLargeEnoughThoughAllTogetherWouldBe) {
  tFragments heap;
  for (u32 index = 0; index != 64; index += 2) heap.free(index);
  EXPECT_EQ(theHeap().getFreeUnits(), u32{512});
  EXPECT_EQ(takingFails(kRecordSize + 1), kStatusHeapFull);
  for (u32 i = 0; i != 32; ++i) EXPECT_LT(heap.take(), u32{64});
}

TEST(StatusHeapSearch, DoesWhatTheModelDoes) {
  // Before the first block the rover's place makes no difference; after it both have the same.
  modelPool.clear();
  tHeapAndModel both(modelPool);
  tRandom random(20240229);
  both.take(0, 16);
  for (u32 i = 0; i != 20000 && both.differences == 0; ++i) {
    u32 const slot = random.below(tHeapAndModel::kSlots);
    if (both.blocks[slot] != nullptr) {
      both.give(slot);
    } else {
      both.take(slot, randomSize(random));
    }
    both.compare();
  }
  EXPECT_EQ(both.differences, u32{0});
  for (u32 slot = 0; slot != tHeapAndModel::kSlots; ++slot) {
    if (both.blocks[slot] != nullptr) both.give(slot);
  }
  EXPECT_TRUE(isHeapUnused());
}
