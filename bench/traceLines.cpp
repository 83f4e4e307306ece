// What a trace line of a component costs: not written because the stream is off, not written
// because of the filter, written to a destination that does nothing; by the macro and by six calls,
// with the settings of a fresh stream and with others. The peers are in traceLinePeers.cpp.

#include <benchmark/benchmark.h>

#include <mutex>

#include "benchedLine.h"
#include "tFloorStream.h"
#include "vexk/cpu.h"

namespace {

using nOXDIAG100::tTrace;

// Runs `putOneLine(slot)` and checks that the destination got what it should.
template <class tPutOneLine>
void runLines(benchmark::State& state, tNullDestination& destination, bool isShown,
              tPutOneLine putOneLine) {
  u32 slot = kSlot;
  u64 const before = destination.getPieces();
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(slot);
    putOneLine(slot);
    benchmark::ClobberMemory();
  }
  u64 const wanted = isShown ? static_cast<u64>(state.iterations()) : 0;
  if (destination.getPieces() - before != wanted) state.SkipWithError("lines went astray");
}

using tPrepare = void(tTrace& trace);

template <class tPut>
void runOurs(benchmark::State& state, tPrepare* prepare, tPut put, bool isShown) {
  tNullDestination destination;
  tBenchStream trace(destination);
  prepare(trace);
  runLines(state, destination, isShown, [&](u32 slot) { put(trace, slot); });
}

void runFloor(benchmark::State& state, bool isEnabled, unsigned int verbosity) {
  tNullDestination destination;
  tFloorStream floor(destination);
  floor.setEnabled(isEnabled);
  bool const isShown = isEnabled && verbosity == kShown;
  runLines(state, destination, isShown, [&](u32 slot) { floor.putLine(verbosity, slot); });
}

void runFullFloor(benchmark::State& state) {
  tNullDestination destination;
  tFloorStream floor(destination);
  runLines(state, destination, true, [&](u32 slot) { floor.putFullLine(kShown, slot); });
}

void runLockedFloor(benchmark::State& state) {
  tNullDestination destination;
  tFloorStream floor(destination);
  std::mutex mutex;
  runLines(state, destination, true, [&](u32 slot) {
    std::lock_guard const held(mutex);
    floor.putLine(kShown, slot);
  });
}

// What every line has to do, shown or not, for the time deltas of others.
void runCounterReads(benchmark::State& state) {
  for ([[maybe_unused]] auto run : state) {
    u64 begin = vexReadTimeStampCounter();
    benchmark::DoNotOptimize(begin);
    u64 end = vexReadTimeStampCounter();
    benchmark::DoNotOptimize(end);
  }
}

BENCHMARK_CAPTURE(runOurs, off, switchOff, showByMacro, false)->Name("macro, stream off/ours");
BENCHMARK(runCounterReads)->Name("macro, stream off/floor");
BENCHMARK_CAPTURE(runOurs, hidden, leave, hideByMacro, false)->Name("macro, hidden/ours");
BENCHMARK(runCounterReads)->Name("macro, hidden/floor");
BENCHMARK_CAPTURE(runOurs, shown, leave, showByMacro, true)->Name("macro, shown/ours");
BENCHMARK_CAPTURE(runFloor, macro, true, kShown)->Name("macro, shown/floor");
BENCHMARK_CAPTURE(runOurs, fields, enableEveryField, showByMacro, true)
    ->Name("macro, every field/ours");
BENCHMARK(runFullFloor)->Name("macro, every field/floor");
BENCHMARK_CAPTURE(runOurs, locked, lockLines, showByMacro, true)->Name("macro, line mutex/ours");
BENCHMARK(runLockedFloor)->Name("macro, line mutex/floor");

BENCHMARK_CAPTURE(runOurs, off, switchOff, showByCalls, false)->Name("six calls, stream off/ours");
BENCHMARK_CAPTURE(runFloor, off, false, kShown)->Name("six calls, stream off/floor");
BENCHMARK_CAPTURE(runOurs, hidden, leave, hideByCalls, false)->Name("six calls, hidden/ours");
BENCHMARK_CAPTURE(runFloor, hidden, true, kHidden)->Name("six calls, hidden/floor");
BENCHMARK_CAPTURE(runOurs, shown, leave, showByCalls, true)->Name("six calls, shown/ours");
BENCHMARK_CAPTURE(runFloor, shown, true, kShown)->Name("six calls, shown/floor");

}  // namespace
