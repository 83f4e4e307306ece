// The entries that the fuzzer calls: start the modules once, run one input after the other in them,
// and unload them at the end.

#include <time.h>

#include <cstdlib>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "qelmk/module.h"
#include "support/fuzzing.h"
#include "vexk/module.h"

extern "C" {

// The fuzzer's counters of branches, between what the linker says of their section; and a call of
// the thread sanitizer, absent without it.
extern u8 __start___sancov_cntrs[] __attribute__((weak));
extern u8 __stop___sancov_cntrs[] __attribute__((weak));
void AnnotateBenignRaceSized(char const* file, int line, void const volatile* start, size_t size,
                             char const* description) __attribute__((weak));
}

namespace {

// The counters count without locks, in every thread.
void allowCounters() {
  if (AnnotateBenignRaceSized == nullptr) return;
  auto const size = static_cast<size_t>(__stop___sancov_cntrs - __start___sancov_cntrs);
  AnnotateBenignRaceSized(__FILE__, __LINE__, __start___sancov_cntrs, size, "counters");
}

// Looking at every guard byte takes longer than most inputs do.
constexpr u64 kInputsBetweenVerifications = 4096;

// Of a processor, by all threads. What else the machine does is not in it.
u64 millisecondsUsed() {
  timespec used;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<u64>(used.tv_sec) * 1000 + static_cast<u64>(used.tv_nsec) / 1'000'000;
}

// What one input may take, as the workshop says; 0 is no limit.
u64 mostMilliseconds() {
  static u64 const most = [] {
    char const* const said = std::getenv("OXDIAG_FUZZ_MILLISECONDS");
    return said != nullptr ? std::strtoull(said, nullptr, 10) : 0;
  }();
  return most;
}

u64 millisecondsOf(std::string const& input) {
  u64 const start = millisecondsUsed();
  fuzzInput(input);
  return millisecondsUsed() - start;
}

// An input that took too long is run once more: a virtual machine that was stopped meanwhile counts
// that as its own time.
void runInput(std::string const& input) {
  u64 const most = mostMilliseconds();
  if (millisecondsOf(input) <= most || most == 0) return;
  u64 const again = millisecondsOf(input);
  if (again <= most) return;
  std::string const demanded =
      "an input takes at most " + std::to_string(most) + " milliseconds of a processor";
  fail(demanded.c_str(), std::to_string(again));
}

void dropPrint(void* /*context*/, char const* /*text*/, size_t /*length*/) {
}

void unloadModules() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the fuzz target");
}

void startModules() {
  bool const isStarted = vexkInitialize() == STATUS_SUCCESS &&
                         qelmkInitialize() == STATUS_SUCCESS &&
                         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
  if (!isStarted) fail("the modules start", "a failure");
  // What its first user builds for good is no block that an input leaves behind.
  nOXDIAG100::tSerialTraceDestination::getInstance();
  nOXDIAG100::tFileTraceDestination::getInstance();
  std::atexit(&unloadModules);
  ntoshost::setDebugPrintSink(&dropPrint, nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  allowCounters();
  startModules();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(u8 const* data, size_t size) {
  static u64 inputs = 0;
  u64 const before = ntoshost::outstandingBlocks();
  runInput(std::string(reinterpret_cast<char const*>(data), size));
  ntoshost::clearFaults();
  if (ntoshost::outstandingBlocks() != before) {
    ntoshost::reportOutstanding();
    fail("an input leaves no block behind", "the blocks above");
  }
  if (++inputs % kInputsBetweenVerifications == 0) ntoshost::verifyPool();
  return 0;
}
