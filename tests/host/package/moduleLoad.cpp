// Load and unload of the library. An image loads once in its life, so every load has a process of
// its own.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tStatus2Heap;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

// Runs `body` in a child and returns its result, or -1 when it ended in another way.
template <class Body>
int inAProcess(Body body) {
  pid_t const child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

tStatus2Heap* heap() {
  i32 status = 0;
  return tStatus2Heap::getHeap(status);
}

void startPlatform() {
  vexkInitialize();
  qelmkInitialize();
}

// What a load with the nth allocation failing came to.
enum tOutcome : int {
  kWhole,            // nothing failed
  kWithoutFilter,    // loaded; every line is shown
  kWithEmptyFilter,  // loaded; the filter has lost its default term
  kWithEmptyHeap,    // loaded; statuses have no detail
  kRefused,          // not loaded, and nothing is left
  kWrong
};

tOutcome judgeLoaded() {
  tTrace& trace = tTrace::getInstance();
  bool const isHeapEmpty = heap()->getFreeUnits() == 0;
  bool const isFilterEmpty = trace.getFilter() != nullptr && trace.getFilter()->isEmpty();
  bool const isFilterMissing = trace.getFilter() == nullptr;
  oxdiagkUnload();
  if (ntoshost::outstandingBlocks() != 0) return kWrong;
  if (isHeapEmpty) return kWithEmptyHeap;
  if (isFilterMissing) return kWithoutFilter;
  return isFilterEmpty ? kWithEmptyFilter : kWhole;
}

int loadWithFailure(u64 n) {
  startPlatform();
  ntoshost::failNth(ntoshost::kFaultMemory, n);
  NTSTATUS const status = oxdiagkInitialize(nullptr);
  ntoshost::clearFaults();
  if (status == STATUS_SUCCESS) return judgeLoaded();
  if (status != STATUS_DRIVER_UNABLE_TO_LOAD) return kWrong;
  return ntoshost::outstandingBlocks() == 0 && heap() == nullptr ? kRefused : kWrong;
}

}  // namespace

TEST(ModuleLoad, BuildsTheStreamAndTheHeapAndUnloadsWithoutALeftover) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
              if (tTrace::getInstance().getDestination() != &tVEXTraceDestination::getInstance()) {
                return 2;
              }
              if (heap() == nullptr) return 3;
              if (oxdiagkUnload() != STATUS_SUCCESS) return 4;
              if (heap() != nullptr) return 5;
              qelmkUnload();
              vexkUnload();
              return ntoshost::outstandingBlocks() == 0 ? 0 : 6;
            }),
            0);
}

TEST(ModuleLoad, IsRefusedWithoutThePlatformLayer) {
  EXPECT_EQ(inAProcess([] {
              if (oxdiagkInitialize(nullptr) != STATUS_DRIVER_UNABLE_TO_LOAD) return 1;
              return ntoshost::outstandingBlocks() == 0 ? 0 : 2;
            }),
            0);
}

TEST(ModuleLoad, EveryFailedAllocationIsRefusedOrSurvivedWithNothingLeft) {
  int seen[kWrong + 1] = {};
  u64 failures = 0;
  for (int outcome = kWrong; outcome != kWhole; ++failures) {
    outcome = inAProcess([&] { return loadWithFailure(failures + 1); });
    ASSERT_GE(outcome, 0) << "at allocation " << failures + 1;
    ++seen[outcome];
  }
  EXPECT_EQ(seen[kWrong], 0);
  EXPECT_EQ(seen[kWithoutFilter], 1);
  EXPECT_EQ(seen[kWithEmptyFilter], 1);
  EXPECT_EQ(seen[kWithEmptyHeap], 1);
  EXPECT_GE(seen[kRefused], 3);  // the terminator, the heap's record, its lock
}
