// What grows with the number of something: each name ends with that number, and ratios.py puts the
// smallest beside the largest.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tTraceFilter.h"
#include "reportItems.h"

using namespace nOXDIAG100;

namespace {

constexpr i64 kFewest = 4;

u32 sizeOf(benchmark::State const& state) {
  return static_cast<u32>(state.range(0));
}

// Differs from others at the end only, and lies among them, as those in a program's code do.
struct tName {
  char text[24];
};

class tCategories : public tAssertConfiguration {
 public:
  explicit tCategories(u32 count) : names(count) {
    u32 number = 1'000'000;
    for (tName& name : names) {
      std::snprintf(name.text, sizeof(name.text), "bus.rack.slot.%u", number++);
      choose(name.text);
    }
  }

  void choose(char* name) {
    char* words[] = {const_cast<char*>("--category"), name};
    configure(2, words);
  }
  using tAssertConfiguration::configure;

  // All of them in turn, far from each other.
  char* next() { return names[at = (at + kStride) % names.size()].text; }

 private:
  static constexpr size_t kStride = 389;  // odd, so that all come before one comes again

  std::vector<tName> names;
  size_t at = 0;
};

void checkContract(benchmark::State& state) {
  tCategories categories(sizeOf(state));
  for ([[maybe_unused]] auto run : state) {
    bool isOn = categories.checksAreEnabled(categories.next());
    benchmark::DoNotOptimize(isOn);
    if (!isOn) return state.SkipWithError("the category is lost");
  }
}

void chooseCategory(benchmark::State& state) {
  tCategories categories(sizeOf(state));
  for ([[maybe_unused]] auto run : state) categories.choose(categories.next());
}

void makeCategories(benchmark::State& state) {
  for ([[maybe_unused]] auto run : state) {
    tCategories categories(sizeOf(state));
    benchmark::DoNotOptimize(categories.next());
  }
}

void pushAndPop(benchmark::State& state) {
  tCategories categories(sizeOf(state));
  for ([[maybe_unused]] auto run : state) {
    categories.pushConfiguration();
    categories.popConfiguration();
  }
}

// So many handles of the module's registry, the one in the middle given back and taken anew.
void giveHandleBack(benchmark::State& state) {
  std::vector<u32> handles(sizeOf(state));
  for (u32& handle : handles) handle = acquireInstance(nullptr);
  u32& middle = handles[handles.size() / 2];
  for ([[maybe_unused]] auto run : state) {
    releaseInstance(middle);
    middle = acquireInstance(nullptr);
    if (middle == kNoHandle) state.SkipWithError("no handle");
  }
  for (u32 const handle : handles) releaseInstance(handle);
}

void describe(benchmark::State& state) {
  tStatus2 status;
  for ([[maybe_unused]] auto run : state) {
    tStatus2Description description(status);
    addItems(description, sizeOf(state), status);
  }
  if (status.isError()) state.SkipWithError("no description was made");
}

void findItem(benchmark::State& state) {
  tStatus2 status;
  tStatus2Description description(status);
  addItems(description, sizeOf(state), status);
  i32 const last = static_cast<i32>(state.range(0)) - 1;
  u32 isFound = 1;
  for ([[maybe_unused]] auto run : state) {
    u32 index = 0;
    isFound &= description.findMatchingUsageType(last, index, status);
    benchmark::DoNotOptimize(index);
  }
  if (status.isError() || isFound == 0) state.SkipWithError("no item was found");
}

// Every term is looked at.
void judgeLine(benchmark::State& state) {
  tTraceFilter filter;
  for (i64 term = 1; term < state.range(0); ++term) {
    filter.addTerm(">= 100", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  }
  bool isShown = true;
  for ([[maybe_unused]] auto run : state) {
    isShown = filter.evaluate("slotbus", "41", 17, "rack.cpp", 1, 120) && isShown;
    benchmark::DoNotOptimize(isShown);
  }
  if (!isShown || filter.hasFailed()) state.SkipWithError("the line was hidden");
}

// Blocks of the status heap, with a gap of one unit behind each, which no status fits into.
class tLiveBlocks {
 public:
  explicit tLiveBlocks(u32 count) : heap(*tStatus2Heap::getHeap(status)) {
    for (u32 index = 0; index < 2 * count; ++index) take();
    for (size_t index = blocks.size() - 1; index < blocks.size(); index -= 2) give(index);
  }
  ~tLiveBlocks() {
    for (size_t index = 0; index < blocks.size(); index += 2) give(index);
  }
  tLiveBlocks(tLiveBlocks const&) = delete;
  tLiveBlocks& operator=(tLiveBlocks const&) = delete;

  bool areThere() const { return status == 0; }

 private:
  void take() { blocks.push_back(heap.allocateMemoryBlock(0, status)); }
  void give(size_t index) { heap.releaseMemoryBlock(blocks[index], status); }

  i32 status = 0;
  tStatus2Heap& heap;
  std::vector<void*> blocks;
};

void allocateBeside(benchmark::State& state) {
  tLiveBlocks const live(sizeOf(state));
  i32 status = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  for ([[maybe_unused]] auto run : state) {
    void* block = heap->allocateMemoryBlock(static_cast<i32>(sizeof(u64)), status);
    benchmark::DoNotOptimize(block);
    heap->releaseMemoryBlock(block, status);
  }
  if (status < 0 || !live.areThere()) state.SkipWithError("the heap failed");
}

BENCHMARK(checkContract)->Name("check beside categories")->RangeMultiplier(4)->Range(kFewest, 1024);
BENCHMARK(chooseCategory)->Name("choose a category of")->RangeMultiplier(4)->Range(kFewest, 1024);
BENCHMARK(makeCategories)->Name("make categories")->RangeMultiplier(4)->Range(kFewest, 4096);
BENCHMARK(pushAndPop)->Name("push and pop categories")->RangeMultiplier(4)->Range(kFewest, 4096);
BENCHMARK(giveHandleBack)->Name("handle beside handles")->RangeMultiplier(10)->Range(1, 100'000);
BENCHMARK(describe)->Name("describe with items")->RangeMultiplier(4)->Range(kFewest, 64);
BENCHMARK(findItem)->Name("find the last of items")->RangeMultiplier(4)->Range(kFewest, 64);
BENCHMARK(judgeLine)->Name("judge a line by terms")->RangeMultiplier(4)->Range(kFewest, 256);
BENCHMARK(allocateBeside)->Name("heap beside live blocks")->RangeMultiplier(4)->Range(kFewest, 256);

}  // namespace
