// What a trace line costs: not written because the stream is off, not written because of the
// filter, written to a destination that does nothing.

#include <benchmark/benchmark.h>

#include "tBenchStream.h"
#include "tFloorStream.h"

namespace {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);
constexpr unsigned int kShown = 120;
constexpr unsigned int kHidden = 60;

void putLine(nOXDIAG100::tTrace& trace, unsigned int verbosity, u32 slot) {
  trace
      .putPrefix("slotbus", kVersion, 118, "examples/slotbus/component/tRackReader.cpp", verbosity,
                 nOXDIAG100::tTrace::kTraceLine)
      .put("slot ")
      .put(slot, 10)
      .put(" answered")
      .endl();
}

// Runs `putOneLine(slot)` and checks that the destination got what it should.
template <class tPutOneLine>
void runLines(benchmark::State& state, tNullDestination& destination, bool isShown,
              tPutOneLine putOneLine) {
  u32 slot = 17;
  u64 const before = destination.getPieces();
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(slot);
    putOneLine(slot);
    benchmark::ClobberMemory();
  }
  u64 const wanted = isShown ? static_cast<u64>(state.iterations()) : 0;
  if (destination.getPieces() - before != wanted) state.SkipWithError("lines went astray");
}

void runOurs(benchmark::State& state, bool isEnabled, unsigned int verbosity) {
  tNullDestination destination;
  tBenchStream trace(destination);
  if (!isEnabled) trace.disable();
  bool const isShown = isEnabled && verbosity == kShown;
  runLines(state, destination, isShown, [&](u32 slot) { putLine(trace, verbosity, slot); });
}

void runFloor(benchmark::State& state, bool isEnabled, unsigned int verbosity) {
  tNullDestination destination;
  tFloorStream floor(destination);
  floor.setEnabled(isEnabled);
  bool const isShown = isEnabled && verbosity == kShown;
  runLines(state, destination, isShown, [&](u32 slot) { floor.putLine(verbosity, slot); });
}

BENCHMARK_CAPTURE(runOurs, disabled, false, kShown)->Name("disabled line/ours");
BENCHMARK_CAPTURE(runFloor, disabled, false, kShown)->Name("disabled line/floor");
BENCHMARK_CAPTURE(runOurs, filtered, true, kHidden)->Name("filtered line/ours");
BENCHMARK_CAPTURE(runFloor, filtered, true, kHidden)->Name("filtered line/floor");
BENCHMARK_CAPTURE(runOurs, shown, true, kShown)->Name("shown line/ours");
BENCHMARK_CAPTURE(runFloor, shown, true, kShown)->Name("shown line/floor");

}  // namespace
