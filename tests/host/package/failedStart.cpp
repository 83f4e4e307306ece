// Starts after starts that failed, and the library before its first and behind its last one. A
// program of its own for every case: a crash ends that one only.

#include <gtest/gtest.h>

#include <vector>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tTrace.h"
#include "package/childProcess.h"
#include "package/everyOperation.h"
#include "package/loadOutcome.h"
#include "qelmk/module.h"
#include "trace/capturedPrint.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tTrace;

enum tResult : int {
  kGood,
  kNoFault = 10,  // not what a crash gives; the call that was to fail was never made
  kNotRefused,
  kLeftSomething,  // behind a start that failed, or behind the unload
  kNotAtRest,
  kNextFailed,
  kNextIncomplete
};

constexpr int kCycles = 100;

bool start() {
  return oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

bool startWithFailure(u64 n) {
  ntoshost::failNth(ntoshost::kFaultAll, n);
  bool const isStarted = start();
  ntoshost::clearFaults();
  return isStarted;
}

bool isNothingLeft() {
  return ntoshost::outstandingBlocks() == 0 && ntoshost::outstandingHandles() == 0;
}

// At rest, every operation may be called and leaves the library as it is.
tResult judgeRest() {
  if (!isNothingLeft()) return kLeftSomething;
  if (!isLibraryAtRest()) return kNotAtRest;
  callEveryOperation();
  if (!isLibraryAtRest()) return kNotAtRest;
  return isNothingLeft() ? kGood : kLeftSomething;
}

// Starts, uses everything, and unloads.
tResult judgeWholeLife() {
  if (!start()) return kNextFailed;
  if (!isLibraryWorking()) return kNextIncomplete;
  callEveryOperation();
  oxdiagkUnload();
  return judgeRest();
}

// The nth call fails in a start. When it is refused, the next one must be whole.
tResult startAgainAfter(u64 n) {
  startPlatform();
  tCapturedPrint const print;
  bool const isStarted = startWithFailure(n);
  if (ntoshost::faultsInjected() == 0) return kNoFault;
  if (isStarted) return kNotRefused;
  tResult const rest = judgeRest();
  return rest != kGood ? rest : judgeWholeLife();
}

constexpr int kNoSuchCall = 101;

// What a start with its nth call failing comes to, behind one that was refused at that call if it
// is not 0.
int startOutcome(u64 refused, u64 n) {
  startPlatform();
  tCapturedPrint const print;
  if (refused != 0 && startWithFailure(refused)) return 100;
  bool const isStarted = startWithFailure(n);
  if (ntoshost::faultsInjected() == 0) return kNoSuchCall;
  int const outcome = isStarted ? judgeLoadedLibrary() : kRefused;
  oxdiagkUnload();
  return isNothingLeft() && isLibraryAtRest() ? outcome : 102;
}

}  // namespace

TEST(FailedStart, TheNextOneInTheSameProgramIsWhole) {
  u32 refused = 0;
  for (u64 n = 1;; ++n) {
    int const result = inAProcess([&] { return static_cast<int>(startAgainAfter(n)); });
    if (result == kNoFault) break;
    if (result == kNotRefused) continue;
    ++refused;
    EXPECT_EQ(result, kGood) << "at call " << n;
  }
  EXPECT_GE(refused, 34u);
}

TEST(FailedStart, TheNextOneFailsForItsOwnReason) {
  std::vector<int> outcomes;
  std::vector<u64> refused;
  for (u64 n = 1; outcomes.empty() || outcomes.back() != kNoSuchCall; ++n) {
    outcomes.push_back(inAProcess([&] { return startOutcome(0, n); }));
    if (outcomes.back() == kRefused) refused.push_back(n);
  }
  ASSERT_GE(refused.size(), 34u);
  for (u64 const first : {refused.front(), refused[refused.size() / 2], refused.back()}) {
    for (u64 n = 1; n <= outcomes.size(); ++n) {
      EXPECT_EQ(inAProcess([&] { return startOutcome(first, n); }), outcomes[n - 1])
          << "call " << n << " behind a start refused at call " << first;
    }
  }
}

TEST(FailedStart, ManyInARowLeaveNothing) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              tCapturedPrint const print;
              for (u64 n = 1; n <= 200; ++n) {
                if (startWithFailure(n % 30 + 1)) oxdiagkUnload();
                if (!isNothingLeft()) return 1;
              }
              return static_cast<int>(judgeWholeLife());
            }),
            kGood);
}

TEST(FailedStart, WithoutThePlatformOrTheFrameworkTheNextOneIsWhole) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              if (start()) return static_cast<int>(kNotRefused);
              vexkInitialize();
              if (start()) return static_cast<int>(kNotRefused);
              if (tResult const rest = judgeRest(); rest != kGood) return static_cast<int>(rest);
              qelmkInitialize();
              return static_cast<int>(judgeWholeLife());
            }),
            kGood);
}

TEST(LibraryAtRest, BeforeThePlatformRunsOperationsDoNothing) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              return static_cast<int>(judgeRest());
            }),
            kGood);
}

TEST(LibraryAtRest, BeforeTheStartOperationsDoNothingAndChangeNothingOfIt) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              startPlatform();
              tResult const rest = judgeRest();
              return static_cast<int>(rest != kGood ? rest : judgeWholeLife());
            }),
            kGood);
}

TEST(LibraryAtRest, AfterTheUnloadOperationsDoNothing) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              startPlatform();
              if (!start()) return static_cast<int>(kNextFailed);
              callEveryOperation();
              oxdiagkUnload();
              return static_cast<int>(judgeRest());
            }),
            kGood);
}

TEST(LibraryAtRest, SwitchesAndWidthOfTheStreamStayAsTheyAre) {
  EXPECT_EQ(inAProcess([] {
              tTrace& trace = tTrace::getInstance();
              u32 const width = trace.getMinPrefixWidth();
              u32 const stamp = trace.timeStampIsEnabled();
              trace.enableTimeStamp();
              trace.setMinPrefixWidth(width + 1);
              trace.enable();
              trace.enableMutex();
              if (trace.timeStampIsEnabled() != stamp) return 1;
              if (trace.getMinPrefixWidth() != width) return 2;
              if (trace.isEnabled() != 0) return 3;
              return trace.mutexIsEnabled() == 0 ? 0 : 4;
            }),
            0);
}

TEST(LibraryAtRest, AnUnloadDoesNothing) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              for (int count = 0; count < 2; ++count) {
                if (oxdiagkUnload() != STATUS_SUCCESS) return static_cast<int>(kNextFailed);
              }
              return static_cast<int>(judgeWholeLife());
            }),
            kGood);
}

TEST(RepeatedStart, StartAndUnloadAHundredTimesGiveAWholeLibraryEachTime) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              startPlatform();
              for (int cycle = 0; cycle < kCycles; ++cycle) {
                if (!start()) return static_cast<int>(kNextFailed);
                if (!isLibraryWorking()) return static_cast<int>(kNextIncomplete);
                oxdiagkUnload();
                if (!isNothingLeft()) return static_cast<int>(kLeftSomething);
              }
              return static_cast<int>(judgeRest());
            }),
            kGood);
}

TEST(RepeatedStart, ASecondOneOnlyCountsAndTheLastUnloadDestroys) {
  EXPECT_EQ(inAProcess([] {
              tCapturedPrint const print;
              startPlatform();
              if (!start()) return 1;
              tTrace::getInstance().configure("--timestamp on");
              u64 const blocks = ntoshost::outstandingBlocks();
              if (!start() || !start()) return 2;
              if (ntoshost::outstandingBlocks() != blocks) return 3;
              if (tTrace::getInstance().timeStampIsEnabled() == 0) return 4;
              for (int count = 0; count < 2; ++count) {
                if (oxdiagkUnload() != STATUS_SUCCESS) return 7;
              }
              if (tTrace::getInstance().timeStampIsEnabled() == 0) return 5;
              if (!isLibraryWorking()) return 6;
              oxdiagkUnload();
              return static_cast<int>(judgeRest());
            }),
            kGood);
}

TEST(RepeatedStart, ASecondOneNeedsNoMemory) {
  EXPECT_EQ(inAProcess([] {
              startPlatform();
              if (!start()) return 1;
              ntoshost::failFrom(ntoshost::kFaultAll, 1);
              bool const isCounted = start();
              oxdiagkUnload();
              ntoshost::clearFaults();
              if (!isCounted || !isLibraryWorking()) return 2;
              oxdiagkUnload();
              return isLibraryAtRest() && isNothingLeft() ? 0 : 3;
            }),
            0);
}
