// The component when there is nothing left: no pool memory, no room in the status heap.

#include <vector>

#include "oxdiagk/tStatus2Heap.h"
#include "slotbus/component/slotbus.h"
#include "slotbusSupport.h"

using namespace nSLOTBUS100;
using nOXDIAG100::tStatus2Heap;

namespace {

std::string const kRack = "1 | 11 | A\\1 | first\nnonsense\n";

struct tOutcome {
  u32 result;
  std::string traced;
};

tOutcome readText(std::string const& text) {
  tKeepingDestination destination;
  tKeepingStream stream(destination);
  u32 const result = readRackText(text.data(), text.size(), stream);
  return {result, destination.text};
}

// Takes all blocks of the status heap, and gives them back at the end.
class tFullStatusHeap {
 public:
  tFullStatusHeap() {
    i32 status = 0;
    while (void* block = heap()->allocateMemoryBlock(0, status)) blocks.push_back(block);
  }
  ~tFullStatusHeap() {
    i32 status = 0;
    for (void* block : blocks) heap()->releaseMemoryBlock(block, status);
    EXPECT_EQ(status, 0);
  }

 private:
  static tStatus2Heap* heap() {
    i32 status = 0;
    return tStatus2Heap::getHeap(status);
  }
  std::vector<void*> blocks;
};

}  // namespace

TEST(SlotbusExhaustion, WithoutMemoryForTheRackTheResultIsOne) {
  tKeepingDestination destination;
  tKeepingStream stream(destination);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  u32 const result = readRackText(kRack.data(), kRack.size(), stream);
  ntoshost::clearFaults();
  EXPECT_EQ(result, 1U);
  EXPECT_NE(destination.text.find("no memory for the rack\n"), std::string::npos);
  EXPECT_NE(destination.text.find("Error Code = -50352\n"), std::string::npos);
}

TEST(SlotbusExhaustion, EveryFailingAllocationLeavesNothingBehind) {
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [](u64) {
    tKeepingDestination destination;
    tKeepingStream stream(destination);
    readRackText(kRack.data(), kRack.size(), stream);
  });
  EXPECT_GE(failures, 1U);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(SlotbusExhaustion, AFullStatusHeapStillTellsCodeAndReason) {
  tFullStatusHeap const full;
  tOutcome const outcome = readText(kRack);
  EXPECT_EQ(outcome.result, 1U);
  EXPECT_NE(outcome.traced.find("line 2: a field is missing"), std::string::npos);
  EXPECT_NE(outcome.traced.find("Error Code = -61005\n"), std::string::npos);
  EXPECT_EQ(outcome.traced.find("Component Name"), std::string::npos);
  EXPECT_NE(outcome.traced.find("devices: 1, failures: 1, lines: 2\n"), std::string::npos);
}

TEST(SlotbusExhaustion, ManyFailuresLeaveTheStatusHeapAsItWas) {
  i32 status = 0;
  u32 const before = tStatus2Heap::getHeap(status)->getFreeUnits();
  std::string text;
  for (int line = 0; line < 1000; ++line) text += "nonsense\n";
  EXPECT_EQ(readText(text).result, 1U);
  EXPECT_EQ(tStatus2Heap::getHeap(status)->getFreeUnits(), before);
}

TEST(SlotbusExhaustion, ANullTextWithoutLengthIsAnEmptyRack) {
  tKeepingDestination destination;
  tKeepingStream stream(destination);
  EXPECT_EQ(readRackText(nullptr, 0, stream), 0U);
  EXPECT_NE(destination.text.find("the rack is empty"), std::string::npos);
}
