// What a traced block costs, its entry and its exit together: shown, and hidden by the filter.

#include <benchmark/benchmark.h>

#include "tBenchStream.h"
#include "tFloorStream.h"

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION kVersion
#define OXDIAG_TRACE_STREAM trace
#define OXDIAG_TRACE_FILE "examples/slotbus/component/tRackReader.cpp"

#include "oxdiagk/traceMacros.h"

namespace {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);
constexpr unsigned int kShown = 120;
constexpr unsigned int kHidden = 60;

void readSlots(nOXDIAG100::tTrace& trace, unsigned int verbosity) {
  OXDIAG_BLOCK(verbosity);
  benchmark::ClobberMemory();
}

void readSlots(tFloorStream& floor, unsigned int verbosity) {
  floor.enterBlock(verbosity, "readSlots");
  benchmark::ClobberMemory();
  floor.leaveBlock(verbosity, "readSlots");
}

template <class tStream>
void runBlocks(benchmark::State& state, unsigned int verbosity) {
  tNullDestination destination;
  tStream stream(destination);
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(verbosity);
    readSlots(stream, verbosity);
  }
  u64 const wanted = verbosity == kShown ? 2 * static_cast<u64>(state.iterations()) : 0;
  if (destination.getPieces() != wanted) state.SkipWithError("lines went astray");
}

void runOurs(benchmark::State& state, unsigned int verbosity) {
  runBlocks<tBenchStream>(state, verbosity);
}

void runFloor(benchmark::State& state, unsigned int verbosity) {
  runBlocks<tFloorStream>(state, verbosity);
}

BENCHMARK_CAPTURE(runOurs, shown, kShown)->Name("shown block/ours");
BENCHMARK_CAPTURE(runFloor, shown, kShown)->Name("shown block/floor");
BENCHMARK_CAPTURE(runOurs, hidden, kHidden)->Name("filtered block/ours");
BENCHMARK_CAPTURE(runFloor, hidden, kHidden)->Name("filtered block/floor");

}  // namespace
