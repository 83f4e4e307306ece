// A million random operations on the status heap and on a model of it.

#include <random>
#include <vector>

#include "rounds.h"
#include "startedHeap.h"
#include "tMapModel.h"

using nOXDIAG100::kStatusHeapBadBlock;
using nOXDIAG100::kStatusHeapFull;

namespace {

constexpr u32 kHeapOperations = roundsOf(3'200'000);

struct tBlock {
  u8* address;
  u32 unit;
  u32 size;
  u8 content;
};

u32 unitsOf(u32 size) {
  return 1 + (size + 15) / 16;
}

class tRun {
 public:
  explicit tRun(u32 seed) : random(seed) {
    // Where the rover is does not matter in an unused heap, and after this it is where the model
    // has it.
    giveBack(takeBlock(16384 - 16));
    model.give(model.take(tMapModel::kUnits), tMapModel::kUnits);
  }

  // Takes a while, gives a while, so that the heap is seen at every level.
  void operate() {
    if (below(4000) == 0) takingShare = below(101);
    u32 const choice = below(100);
    if (choice < 8) {
      giveBadBlock();
    } else if (blocks.empty() || below(100) < takingShare) {
      take();
    } else {
      give();
    }
    compare();
  }

  void giveAll() {
    while (!blocks.empty()) {
      give();
      compare();
    }
  }

 private:
  u32 below(u32 limit) { return static_cast<u32>(random() % limit); }

  i32 pickSize() {
    switch (below(16)) {
      case 0:
        return static_cast<i32>(below(18'000));
      case 1:
        return static_cast<i32>(random());  // any number, negative ones included
      case 2:
      case 3:
        return static_cast<i32>(below(3'000));
      case 4:
      case 5:
      case 6:
        return 240;
      case 7:
        return 0;
      default:
        return static_cast<i32>(below(300));
    }
  }

  // Every block has its content, which must be there at the end.
  void take() {
    i32 const size = pickSize();
    i32 status = 0;
    auto* const address = static_cast<u8*>(theHeap().allocateMemoryBlock(size, status));
    bool const isPossible = size >= 0 && size <= 16'384;
    u32 const unit = isPossible ? model.take(unitsOf(static_cast<u32>(size))) : tMapModel::kNone;
    ASSERT_EQ(address != nullptr, unit != tMapModel::kNone) << size;
    ASSERT_EQ(status, address != nullptr ? 0 : kStatusHeapFull);
    if (address == nullptr) return;
    ASSERT_EQ(address, atOffset((u64{unit} + 2) * 16)) << size;
    u8 const content = static_cast<u8>(below(256));
    __builtin_memset(address, content, static_cast<u32>(size));
    blocks.push_back({address, unit, static_cast<u32>(size), content});
  }

  void give() {
    u32 const index = below(static_cast<u32>(blocks.size()));
    tBlock const block = blocks[index];
    blocks[index] = blocks.back();
    blocks.pop_back();
    u32 damaged = 0;
    for (u32 i = 0; i != block.size; ++i) damaged += block.address[i] == block.content ? 0 : 1;
    ASSERT_EQ(damaged, 0u);
    // With any status on entry.
    i32 const before = static_cast<i32>(below(3)) - 1;
    i32 status = before;
    theHeap().releaseMemoryBlock(block.address, status);
    ASSERT_EQ(status, before);
    model.give(block.unit, unitsOf(block.size));
  }

  void* pickBadBlock() {
    if (below(10) == 0) return nullptr;
    if (below(10) == 0) return atOffset(random() % (4 * kArenaSize) + kArenaSize + 1);
    if (!blocks.empty() && below(3) == 0) {
      tBlock const& block = blocks[below(static_cast<u32>(blocks.size()))];
      if (block.size >= 16) return block.address + 16 + below(block.size / 16) * 16;
      return block.address + 1 + below(15);
    }
    u32 const unit = below(tMapModel::kUnits);
    u64 const address = (u64{unit} + 2) * 16;
    return atOffset(model.isFree(unit) ? address : address + 1 + below(15));
  }

  void giveBadBlock() {
    tHeapRecord const before = heapRecord();
    ASSERT_EQ(giveBack(pickBadBlock()), kStatusHeapBadBlock);
    ASSERT_TRUE(isSameRecord(before, heapRecord()));
  }

  void compare() {
    tHeapRecord const record = heapRecord();
    ASSERT_EQ(record.freeUnits, model.getFreeUnits());
    ASSERT_EQ(record.usedUnits, tMapModel::kUnits - model.getFreeUnits());
    ASSERT_EQ(record.freeBlocks, model.getFragments());
    ASSERT_EQ(record.allocatedBlocks, model.getAllocatedBlocks());
    ASSERT_EQ(record.rover, record.arena + u64{16} * model.getRover());
  }

  std::mt19937 random;
  tMapModel model;
  std::vector<tBlock> blocks;
  u32 takingShare = 60;
};

}  // namespace

TEST(StatusHeapModel, RandomOperationsDoWhatTheModelDoes) {
  tStartedHeap const started;
  tRun run(20240229);
  for (u32 i = 0; i != kHeapOperations; ++i) {
    run.operate();
    if (testing::Test::HasFatalFailure()) {
      FAIL() << "in operation " << i;
    }
  }
  run.giveAll();
  EXPECT_TRUE(isHeapUnused());
}
