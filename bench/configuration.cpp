// What configuring the stream costs: an option string with every option there is, the same without
// those that measure or switch, beside a hand-written reader and the C library's, and inquire.

#include <benchmark/benchmark.h>

#include "ntoshost/executive.h"
#include "optionTexts.h"
#include "tBenchStream.h"
#include "tFloorConfiguration.h"

namespace {

void dropPrint(void*, char const*, size_t) {
}

void runOurs(benchmark::State& state, char const* options) {
  tNullDestination destination;
  tBenchStream trace(destination);
  ntoshost::setDebugPrintSink(&dropPrint, nullptr);
  for ([[maybe_unused]] auto run : state) trace.configure(options);
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  if (trace.getMinPrefixWidth() != 50 || trace.isEnabled() != 1) state.SkipWithError("not read");
}

void runFloor(benchmark::State& state, int (tFloorConfiguration::*read)(char const*)) {
  tFloorConfiguration floor;
  int known = 0;
  for ([[maybe_unused]] auto run : state) {
    known = (floor.*read)(kSettings);
    benchmark::DoNotOptimize(floor);
  }
  if (known != kSettingCount) state.SkipWithError("options were not known");
}

void runInquire(benchmark::State& state) {
  tNullDestination destination;
  tBenchStream trace(destination);
  char text[512];
  for ([[maybe_unused]] auto run : state) {
    trace.inquire(text, sizeof(text), nullptr);
    benchmark::DoNotOptimize(text);
  }
}

BENCHMARK_CAPTURE(runOurs, settings, kSettings)->Name("configure 16 settings/ours");
BENCHMARK_CAPTURE(runFloor, hand, &tFloorConfiguration::readByHand)
    ->Name("configure 16 settings/floor");
BENCHMARK_CAPTURE(runFloor, getopt, &tFloorConfiguration::readByGetopt)
    ->Name("configure 16 settings/getopt");
BENCHMARK_CAPTURE(runOurs, every, kEveryOption)->Name("configure every one of 19 options");
BENCHMARK(runInquire)->Name("inquire");

}  // namespace
