// The entries that the fuzzer calls: start the modules once, run one input after the other in them,
// and unload them at the end.

#include <cstdlib>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "qelmk/module.h"
#include "support/fuzzing.h"
#include "vexk/module.h"

namespace {

// Looking at every guard byte takes longer than most inputs do.
constexpr u64 kInputsBetweenVerifications = 4096;

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
  startModules();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(u8 const* data, size_t size) {
  static u64 inputs = 0;
  u64 const before = ntoshost::outstandingBlocks();
  fuzzInput(std::string(reinterpret_cast<char const*>(data), size));
  ntoshost::clearFaults();
  if (ntoshost::outstandingBlocks() != before) {
    ntoshost::reportOutstanding();
    fail("an input leaves no block behind", "the blocks above");
  }
  if (++inputs % kInputsBetweenVerifications == 0) ntoshost::verifyPool();
  return 0;
}
