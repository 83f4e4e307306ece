// What a structured explanation costs: making a description, giving it to a status, which clones
// it, and dropping both; rendering one. The floor does the same with a vector of numbers on the C
// library's heap; descriptionPeers.cpp has a status of somebody else's.
//
// An item takes two blocks of the module's memory here: the clone in the description, and its clone
// in the status. On the host that memory is the executive's pool, in the plain one the C library's
// heap; its cost alone is shown too.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <vector>

#define OXDIAG_COMPONENT "slotbus"

#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tStatus2Description.h"
#include "reportItems.h"
#include "tPlainTranslator.h"
#include "vexk/memory.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace {

constexpr i32 kCode = -61007;

void describeOurs(benchmark::State& state, u32 count) {
  for ([[maybe_unused]] auto run : state) {
    tStatus2 making;
    tStatus2Description description(making);
    addItems(description, count, making);
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kCode, description);
    benchmark::DoNotOptimize(status);
    if (making.isError() || status.getDescription() == nullptr) {
      return state.SkipWithError("no description was made");
    }
  }
}

void cloneOurs(benchmark::State& state, u32 count) {
  tStatus2 status;
  tStatus2Description description(status);
  addItems(description, count, status);
  i32 code = 0;
  for ([[maybe_unused]] auto run : state) delete description.clone(code);
  if (code < 0 || status.isError()) state.SkipWithError("no clone was made");
}

void renderOurs(benchmark::State& state, u32 count) {
  tStatus2 status;
  tStatus2Description description(status);
  addItems(description, count, status);
  tPlainTranslator const translator;
  for ([[maybe_unused]] auto run : state) {
    _STL::wstring text;
    description.generateReport(translator, text, status);
    benchmark::DoNotOptimize(text);
  }
  if (status.isError()) state.SkipWithError("no report was made");
}

// An item and its value, each on the heap, like the library's reportable.
struct tFloorItem {
  i32 usageType;
  std::unique_ptr<u32> value;
};

void describeFloor(benchmark::State& state, u32 count) {
  for ([[maybe_unused]] auto run : state) {
    std::vector<tFloorItem> made;
    for (u32 index = 0; index < count; ++index) {
      made.push_back({static_cast<i32>(index), std::make_unique<u32>(17u)});
    }
    std::vector<tFloorItem> kept;
    kept.reserve(made.size());
    for (tFloorItem const& item : made) {
      kept.push_back({item.usageType, std::make_unique<u32>(*item.value)});
    }
    benchmark::DoNotOptimize(kept);
    benchmark::ClobberMemory();
  }
}

void cloneFloor(benchmark::State& state, u32 count) {
  std::vector<tFloorItem> made;
  for (u32 index = 0; index < count; ++index) {
    made.push_back({static_cast<i32>(index), std::make_unique<u32>(17u)});
  }
  for ([[maybe_unused]] auto run : state) {
    std::vector<tFloorItem> cloned;
    cloned.reserve(made.size());
    for (tFloorItem const& item : made) {
      cloned.push_back({item.usageType, std::make_unique<u32>(*item.value)});
    }
    benchmark::DoNotOptimize(cloned);
    benchmark::ClobberMemory();
  }
}

void renderFloor(benchmark::State& state, u32 count) {
  char text[4096];
  for ([[maybe_unused]] auto run : state) {
    size_t length = 0;
    for (u32 index = 0; index < count; ++index) {
      length += static_cast<size_t>(
          std::snprintf(text + length, sizeof text - length, "item %u: %u; ", index, 17u));
    }
    benchmark::DoNotOptimize(text);
    benchmark::ClobberMemory();
  }
}

constexpr size_t kBlockSize = 48;  // about a reportable

void takeOurs(benchmark::State& state) {
  i32 status = 0;
  for ([[maybe_unused]] auto run : state) {
    void* block = _memNewUsingCRT(kBlockSize, kMemLongLived, status);
    benchmark::DoNotOptimize(block);
    _memDelete(block);
  }
  if (status < 0) state.SkipWithError("the pool failed");
}

void takeFloor(benchmark::State& state) {
  for ([[maybe_unused]] auto run : state) {
    std::unique_ptr<char[]> const block(new char[kBlockSize]);
    benchmark::DoNotOptimize(block[0]);
  }
}

BENCHMARK(takeOurs)->Name("take and give a block of memory/ours");
BENCHMARK(takeFloor)->Name("take and give a block of memory/floor");
BENCHMARK_CAPTURE(describeOurs, 1, 1u)->Name("describe an error with 1 item/ours");
BENCHMARK_CAPTURE(describeOurs, 10, 10u)->Name("describe an error with 10 items/ours");
BENCHMARK_CAPTURE(describeOurs, 100, 100u)->Name("describe an error with 100 items/ours");
BENCHMARK_CAPTURE(describeFloor, 1, 1u)->Name("describe an error with 1 item/floor");
BENCHMARK_CAPTURE(describeFloor, 10, 10u)->Name("describe an error with 10 items/floor");
BENCHMARK_CAPTURE(describeFloor, 100, 100u)->Name("describe an error with 100 items/floor");
BENCHMARK_CAPTURE(cloneOurs, 10, 10u)->Name("clone 10 items/ours");
BENCHMARK_CAPTURE(cloneFloor, 10, 10u)->Name("clone 10 items/floor");
BENCHMARK_CAPTURE(renderOurs, 1, 1u)->Name("render 1 item/ours");
BENCHMARK_CAPTURE(renderOurs, 10, 10u)->Name("render 10 items/ours");
BENCHMARK_CAPTURE(renderOurs, 100, 100u)->Name("render 100 items/ours");
BENCHMARK_CAPTURE(renderFloor, 1, 1u)->Name("render 1 item/floor");
BENCHMARK_CAPTURE(renderFloor, 10, 10u)->Name("render 10 items/floor");
BENCHMARK_CAPTURE(renderFloor, 100, 100u)->Name("render 100 items/floor");

}  // namespace
