// The library over the plain executive, which benchmarks, tools and clients have.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#define OXDIAG_COMPONENT "plain"

#include "ntos/fastMutex.h"
#include "ntos/irql.h"
#include "ntos/mutex.h"
#include "ntos/pool.h"
#include "ntos/thread.h"
#include "ntos/wait.h"
#include "ntoshost/executive.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/traceMacros.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Heap;
using nOXDIAG100::tTrace;

constexpr u32 kTag = ntosPoolTag("plai");
constexpr i32 kCode = -61007;

tStatus2Heap& heap() {
  i32 status = 0;
  return *tStatus2Heap::getHeap(status);
}

}  // namespace

TEST(PlainExecutive, SaysWhichItIs) {
  EXPECT_STREQ(ntoshost::getStrength(), "plain");
}

TEST(PlainExecutive, TheLibraryTracesALine) {
  tCapturedPrint const print;
  tTrace& trace = tTrace::getInstance();
  trace.putPrefix("plain", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
  trace.put("seven is ").put(u32{7}, 10).endl();
  EXPECT_NE(print.text().find("seven is 7\n"), std::string::npos) << print.text();
}

TEST(PlainExecutive, AHandleStandsForItsObjectUntilItIsReleased) {
  char name[] = "trace";
  u32 const handle = nOXDIAG100::acquireInstance(name);
  ASSERT_NE(handle, nOXDIAG100::kNoHandle);
  tTrace& trace = tTrace::getInstance();
  nOXDIAG100::pushConfiguration(handle);
  nOXDIAG100::configure(handle, "--verbosity on");
  EXPECT_EQ(trace.verbosityIsEnabled(), 1u);
  nOXDIAG100::popConfiguration(handle);
  EXPECT_EQ(trace.verbosityIsEnabled(), 0u);
  nOXDIAG100::releaseInstance(handle);
  nOXDIAG100::configure(handle, "--verbosity on");
  EXPECT_EQ(trace.verbosityIsEnabled(), 0u);
}

TEST(PlainExecutive, AnErrorKeepsItsOriginAndGivesItsMemoryBack) {
  u32 const freeUnits = heap().getFreeUnits();
  {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, kCode);
    EXPECT_EQ(status.getCode(), kCode);
    EXPECT_STREQ(status.getComponentName(), "plain");
    u64 stack[tStatus2::kStackTraceLength] = {};
    status.getStackTrace(stack);
    EXPECT_NE(stack[0], 0u);
    EXPECT_GT(freeUnits, heap().getFreeUnits());
  }
  EXPECT_EQ(freeUnits, heap().getFreeUnits());
}

TEST(PlainExecutive, ALockKeepsThreadsApart) {
  u32 counter = 0;  // not atomic: the thread sanitizer watches it
  std::vector<std::thread> threads;
  for (u32 i = 0; i < 4; ++i) {
    threads.emplace_back([&counter] {
      i32 status = 0;
      iSync* lock = syncOpen("plain::_lock", tSyncDescriptor{}, status);
      for (u32 round = 0; round < 1000; ++round) {
        tSyncLock const held(lock);
        ++counter;
      }
      syncClose(lock);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 4000u);
}

TEST(PlainExecutive, CallersBlocksAreAlignedAndNotCounted) {
  u64 const before = ntoshost::outstandingBlocks();
  void* const block = ExAllocatePoolWithTag(NonPagedPoolNx, 100, kTag);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(reinterpret_cast<u64>(block) % 16, 0u);
  EXPECT_EQ(before, ntoshost::outstandingBlocks());
  ExFreePoolWithTag(block, kTag);
}

TEST(PlainExecutive, MemoryRunsOutWhenItIsTold) {
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(ExAllocatePoolWithTag(PagedPool, 16, kTag), nullptr);
  ntoshost::clearFaults();
}

TEST(PlainExecutive, NobodyLooksAtTheLevelOrAtWhoOwnsALock) {
  KIRQL previous;
  KeRaiseIrql(HIGH_LEVEL, &previous);
  void* const block = ExAllocatePoolWithTag(PagedPool, 16, kTag);
  KeLowerIrql(previous);
  ExFreePoolWithTag(block, ntosPoolTag("else"));
  std::thread(KeEnterCriticalRegion).join();
  std::thread(KeLeaveCriticalRegion).join();
}

TEST(PlainExecutive, RegionsAndMutexesAreCounted) {
  EXPECT_EQ(KeAreApcsDisabled(), 0);
  KeEnterCriticalRegion();
  EXPECT_EQ(KeAreApcsDisabled(), 1);
  KeLeaveCriticalRegion();
  KMUTEX mutex;
  KeInitializeMutex(&mutex, 0);
  KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, nullptr);
  EXPECT_EQ(KeAreApcsDisabled(), 1);
  KeReleaseMutex(&mutex, 0);
  EXPECT_EQ(KeAreApcsDisabled(), 0);
}

TEST(PlainExecutive, StacksAndPagedMemoryAreThoseOfTheProgram) {
  EXPECT_FALSE(ntoshost::hasKernelStacks());
  EXPECT_EQ(ntoshost::deepestKernelStack(), 0u);
  EXPECT_FALSE(ntoshost::isPagedPoolGuarded());
  u8* const block = static_cast<u8*>(ExAllocatePoolWithTag(PagedPool, 16, kTag));
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  block[0] = 1;
  KeLowerIrql(previous);
  ExFreePoolWithTag(block, kTag);
}

TEST(PlainExecutive, MemoryRunsOutAtRandomToo) {
  ntoshost::failRandomly(ntoshost::kFaultMemory, ntoshost::kFaultChances, 1);
  EXPECT_EQ(ExAllocatePoolWithTag(PagedPool, 16, kTag), nullptr);
  ntoshost::clearFaults();
}

TEST(PlainExecutiveDeathTest, AFastMutexIsStillReleasedByItsOwnerOnly) {
  FAST_MUTEX mutex;
  ExInitializeFastMutex(&mutex);
  EXPECT_DEATH(ExReleaseFastMutex(&mutex), "is not owned by the calling thread");
}
