// Load and unload of the library, each load in a process of its own, whose first one it is.

#include <gtest/gtest.h>

#include <cstring>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/package.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "package/childProcess.h"
#include "package/loadOutcome.h"
#include "package/windows/moduleRecord.h"
#include "qelmk/module.h"
#include "support/heapRecord.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tStatus2Heap;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

tStatus2Heap* heap() {
  i32 status = 0;
  return tStatus2Heap::getHeap(status);
}

tLoadOutcome judgeLoaded() {
  tLoadOutcome const outcome = judgeLoadedLibrary();
  oxdiagkUnload();
  return ntoshost::outstandingBlocks() == 0 && isLibraryGone() ? outcome : kWrong;
}

int loadWithFailure(u64 n) {
  startPlatform();
  ntoshost::failNth(ntoshost::kFaultMemory, n);
  NTSTATUS const status = oxdiagkInitialize(nullptr);
  ntoshost::clearFaults();
  if (status == STATUS_SUCCESS) return judgeLoaded();
  if (status != STATUS_DRIVER_UNABLE_TO_LOAD) return kWrong;
  return ntoshost::outstandingBlocks() == 0 && isLibraryGone() ? kRefused : kWrong;
}

bool isSame(nOXDIAG100::tModuleRecord const& left, nOXDIAG100::tModuleRecord const& right) {
  tModulePackage const& one = left.package;
  tModulePackage const& other = right.package;
  bool const isSamePath =
      one.registryPath.Length == other.registryPath.Length &&
      one.registryPath.MaximumLength == other.registryPath.MaximumLength &&
      one.registryPath.Buffer == other.registryPath.Buffer &&
      std::memcmp(one.registryPathText, other.registryPathText, sizeof one.registryPathText) == 0;
  bool const areSameStates = one.wdmWrapperState == other.wdmWrapperState &&
                             one.legacyWrapperState == other.legacyWrapperState &&
                             std::memcmp(one.legacyWrapperWords, other.legacyWrapperWords,
                                         sizeof one.legacyWrapperWords) == 0;
  return isSamePath && areSameStates && one.format == other.format &&
         one.identity == other.identity && one.reserved == other.reserved &&
         left.info.name == right.info.name;
}

}  // namespace

TEST(ModuleLoad, UnloadLeavesTheModulesRecordAsItWasBefore) {
  EXPECT_EQ(inAProcess([] {
              nOXDIAG100::tModuleRecord const before = nOXDIAG100::moduleRecord;
              startPlatform();
              wchar_t text[] = L"\\path";
              UNICODE_STRING path = {10, 10, text};
              if (oxdiagkInitialize(&path) != STATUS_SUCCESS) return 1;
              pkgSetWDMWrapperLoadStateAndGetGUID(2);
              tModulePackage& package = *pkgSetLegacyWrapperLoadState(3);
              package.legacyWrapperWords[1] = 4;
              if (isSame(before, nOXDIAG100::moduleRecord)) return 2;
              oxdiagkUnload();
              return isSame(before, nOXDIAG100::moduleRecord) ? 0 : 3;
            }),
            0);
}

TEST(ModuleLoad, AnEndWhileSomebodyHasTheLockOfTheHeapSaysSo) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
              auto* lock = reinterpret_cast<iSync*>(heapRecord().lock);
              if (lock->acquire(kSyncWaitForever) != 0) return 2;
              i32 const status = pkgWDMWrapperCallSSMain(1);
              if (lock->release() != 0 || syncClose(lock) != 0) return 3;
              oxdiagkUnload();
              if (ntoshost::outstandingBlocks() != 0) return 4;
              return status == kStatusSyncInUse ? 0 : 5;
            }),
            0);
}

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

TEST(ModuleLoad, UnloadDestroysTheSerialDestinationAfterTheStreamThatUsesIt) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
              tTrace& trace = tTrace::getInstance();
              trace.pushConfiguration();
              trace.configure("--destination serial 9600");
              trace.pushConfiguration();
              if (trace.getDestination() != tSerialTraceDestination::getInstance()) return 2;
              oxdiagkUnload();
              return ntoshost::outstandingBlocks() == 0 ? 0 : 3;
            }),
            0);
}

TEST(ModuleLoad, UnloadDestroysTheSerialDestinationThatASavedConfigurationMakesAtTheEnd) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
              tTrace& trace = tTrace::getInstance();
              trace.configure("--destination serial");
              trace.pushConfiguration();
              trace.configure("--destination vex");
              tSerialTraceDestination::destroyInstance();
              oxdiagkUnload();
              return ntoshost::outstandingBlocks() == 0 ? 0 : 2;
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
  int seen[kOutcomeCount] = {};
  u64 failures = 0;
  for (int outcome = kWrong; outcome != kWhole; ++failures) {
    outcome = inAProcess([&] { return loadWithFailure(failures + 1); });
    ASSERT_GE(outcome, 0) << "at allocation " << failures + 1;
    ++seen[outcome];
  }
  EXPECT_EQ(seen[kWrong], 0);
  EXPECT_EQ(seen[kWithoutCategory], 4);
  EXPECT_EQ(seen[kWithoutFilter], 1);
  EXPECT_EQ(seen[kWithEmptyFilter], 1);
  EXPECT_EQ(seen[kWithEmptyHeap], 1);
  EXPECT_GE(seen[kWithoutRegistry], 2);  // its lock, its ring
  EXPECT_GE(seen[kRefused], 12);  // a terminator a class, four more, the heap's record, its lock
}
