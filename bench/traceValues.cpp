// What values in a line cost: numbers in decimal and hexadecimal, and a hex dump of 256 bytes.

#include <benchmark/benchmark.h>

#include "tBenchStream.h"
#include "tFloorStream.h"

namespace {

// Both sides put the same numbers: of every length and both signs, from a table that is read in
// turn.
constexpr u32 kNumberCount = 64;
constexpr u32 kDumpLength = 256;  // bytes
constexpr u32 kDumpUnit = 4;      // bytes

struct tNumbers {
  tNumbers() {
    u32 random = 12345;
    for (i32& value : values) {
      random = random * 1664525 + 1013904223;
      value = static_cast<i32>(random) >> (random % 31);
    }
  }
  i32 values[kNumberCount];
};

template <class tPutNumber>
void runNumbers(benchmark::State& state, tNullDestination& destination, tPutNumber putNumber) {
  tNumbers const numbers;
  u32 index = 0;
  for ([[maybe_unused]] auto run : state) {
    putNumber(numbers.values[index++ % kNumberCount]);
    benchmark::ClobberMemory();
  }
  if (state.iterations() > 1000 && destination.getPieces() == 0) {
    state.SkipWithError("no number arrived");
  }
}

void runOurNumbers(benchmark::State& state, u32 radix) {
  tNullDestination destination;
  tBenchStream trace(destination);
  runNumbers(state, destination, [&](i32 value) { trace.put(value, radix); });
}

void runFloorDecimal(benchmark::State& state) {
  tNullDestination destination;
  tFloorStream floor(destination);
  runNumbers(state, destination, [&](i32 value) { floor.putDecimal(value); });
}

void runFloorHexadecimal(benchmark::State& state) {
  tNullDestination destination;
  tFloorStream floor(destination);
  runNumbers(state, destination, [&](i32 value) { floor.putHexadecimal(value); });
}

template <class tPutDump>
void runDump(benchmark::State& state, tNullDestination& destination, tPutDump putDump) {
  alignas(16) u8 bytes[kDumpLength];
  for (u32 index = 0; index < kDumpLength; ++index) bytes[index] = static_cast<u8>(index * 7);
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(bytes);
    putDump(bytes);
    benchmark::ClobberMemory();
  }
  u64 const rows = static_cast<u64>(state.iterations()) * (kDumpLength / 16);
  if (destination.getPieces() != rows) state.SkipWithError("rows went astray");
}

void runOurDump(benchmark::State& state) {
  tNullDestination destination;
  tBenchStream trace(destination);
  runDump(state, destination, [&](u8 const* bytes) {
    trace.put(static_cast<void const*>(bytes), kDumpLength, kDumpUnit);
  });
}

void runFloorDump(benchmark::State& state) {
  tNullDestination destination;
  tFloorStream floor(destination);
  runDump(state, destination, [&](u8 const* bytes) { floor.putDump(bytes, kDumpLength); });
}

BENCHMARK_CAPTURE(runOurNumbers, decimal, 10)->Name("put int radix 10/ours");
BENCHMARK(runFloorDecimal)->Name("put int radix 10/floor");
BENCHMARK_CAPTURE(runOurNumbers, hexadecimal, 16)->Name("put int radix 16/ours");
BENCHMARK(runFloorHexadecimal)->Name("put int radix 16/floor");
BENCHMARK(runOurDump)->Name("hex dump of 256 bytes/ours");
BENCHMARK(runFloorDump)->Name("hex dump of 256 bytes/floor");

}  // namespace
