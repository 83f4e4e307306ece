// What a trace line of a component costs: not written because the stream is off, not written
// because of the filter, written to a destination that does nothing; by the macro and by six calls,
// with the settings of a fresh stream and with others. The peers are in traceLinePeers.cpp.

#include <benchmark/benchmark.h>

#include <mutex>

#include "tBenchStream.h"
#include "tFloorStream.h"
#include "vexk/cpu.h"

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION kVersion
#define OXDIAG_TRACE_STREAM trace
#define OXDIAG_TRACE_FILE "examples/slotbus/component/tRackReader.cpp"

#include "oxdiagk/traceMacros.h"

namespace {

using nOXDIAG100::tTrace;

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);
constexpr unsigned int kShown = 120;
constexpr unsigned int kHidden = 60;
constexpr u32 kWidthForEveryField = 110;

constexpr auto showByMacro = [](tTrace& trace, u32 slot) {
  OXDIAG_TRACE(kShown, put("slot ").put(slot, 10).put(" answered"));
};

constexpr auto hideByMacro = [](tTrace& trace, u32 slot) {
  OXDIAG_TRACE(kHidden, put("slot ").put(slot, 10).put(" answered"));
};

void putLine(tTrace& trace, unsigned int verbosity, u32 slot) {
  trace
      .putPrefix("slotbus", kVersion, 118, "examples/slotbus/component/tRackReader.cpp", verbosity,
                 tTrace::kTraceLine)
      .put("slot ")
      .put(slot, 10)
      .put(" answered")
      .endl();
}

constexpr auto showByCalls = [](tTrace& trace, u32 slot) { putLine(trace, kShown, slot); };

constexpr auto hideByCalls = [](tTrace& trace, u32 slot) { putLine(trace, kHidden, slot); };

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

using tPrepare = void(tTrace& trace);

void leave(tTrace&) {
}

void switchOff(tTrace& trace) {
  trace.disable();
}

void enableEveryField(tTrace& trace) {
  trace.enableComponentVersion();
  trace.enableThreadId();
  trace.enableTimeStamp();
  trace.enableTimeDelta();
  trace.enableVerbosity();
  trace.setMinPrefixWidth(kWidthForEveryField);
}

void lockLines(tTrace& trace) {
  trace.enableMutex();
}

// The line is compiled into its loop, as it is into a component.
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
