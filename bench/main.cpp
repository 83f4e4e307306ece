// Runs the benchmarks with the library and the modules beneath it started, as they are in a driver.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <thread>

#include "ntoshost/strength.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

// The C library takes the atomic operations out of its locks while a process has never had a second
// thread. A kernel is never in that state, so it would make the floors lower than they are.
void becomeMultithreaded() {
  std::thread([] {}).join();
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 64;
  if (vexkInitialize() < 0 || qelmkInitialize() < 0 || oxdiagkInitialize(nullptr) < 0) {
    std::fputs("oxdiag_bench: the library cannot be started.\n", stderr);
    return 3;
  }
  becomeMultithreaded();
  benchmark::AddCustomContext("executive", ntoshost::getStrength());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  return 0;
}
