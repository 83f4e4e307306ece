// The trace stream when memory is exhausted: the first, the second, the third ... allocation of
// each operation fails, and each time the stream is as it was and still writes.

#include "capturedPrint.h"
#include "keptLines.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

// Runs `operation` with each of its allocations failing in turn, and demands that nothing leaks.
template <class Operation>
u64 failEachAllocation(Operation operation) {
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    operation();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  });
  return failures;
}

bool hasFailed() {
  return ntoshost::faultsInjected() != 0;
}

void expectThatItWrites(tOwnTrace& trace, tKeptLines& kept) {
  kept.pieces.clear();
  trace.put("still writing").endl();
  EXPECT_EQ(kept.text(), "still writing\n");
}

}  // namespace

TEST(TraceFaults, StreamWithoutAFilterShowsEveryLine) {
  tKeptLines kept;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tOwnTrace trace(kept);
  ntoshost::clearFaults();
  EXPECT_EQ(trace.getFilter(), nullptr);
  trace.setMinPrefixWidth(0);
  trace.putPrefix("test", tSSVersion(), 1, "file", 0, tTrace::kTraceLine);
  trace.put("shown").endl();
  EXPECT_EQ(kept.text(), "shown\n");
}

TEST(TraceFaults, StreamWithoutAFilterTakesEveryOption) {
  tKeptLines kept;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tOwnTrace trace(kept);
  ntoshost::clearFaults();
  trace.configure("--filter line==5 --linenumber ==5 --compver --filter --verbosity on");
  EXPECT_EQ(trace.componentVersionIsEnabled(), 1u);
  EXPECT_EQ(trace.verbosityIsEnabled(), 1u);
  EXPECT_EQ(settingsOf(trace).find("--filter"), std::string::npos);
}

TEST(TraceFaults, ConstructionSurvivesEveryFailure) {
  u64 const failures = failEachAllocation([] {
    tKeptLines kept;
    tOwnTrace trace(kept);
    expectThatItWrites(trace, kept);
  });
  EXPECT_GE(failures, 1u);
}

TEST(TraceFaults, FailedConfigureChangesNothing) {
  u64 const failures = failEachAllocation([] {
    tKeptLines kept;
    tOwnTrace trace(kept);
    bool const failedBefore = hasFailed();
    trace.configure("--off --prefixwidth 7");
    if (hasFailed() && !failedBefore) {
      EXPECT_EQ(trace.isEnabled(), 1u);
      EXPECT_EQ(trace.getMinPrefixWidth(), 50u);
    }
  });
  EXPECT_GE(failures, 3u);
}

TEST(TraceFaults, FailedPushSavesNothingAndKeepsWhatIsSaved) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.setMinPrefixWidth(1);
  trace.pushConfiguration();
  u64 const before = ntoshost::outstandingBlocks();
  trace.setMinPrefixWidth(2);
  for (u64 n = 1; n <= 2; ++n) {
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    trace.pushConfiguration();
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u) << "allocation " << n;
  }
  trace.popConfiguration();
  EXPECT_EQ(trace.getMinPrefixWidth(), 1u);
  trace.setMinPrefixWidth(3);
  trace.popConfiguration();
  EXPECT_EQ(trace.getMinPrefixWidth(), 3u);
  EXPECT_LE(ntoshost::outstandingBlocks(), before);
  expectThatItWrites(trace, kept);
}

TEST(TraceFaults, PushWorksAgainAfterAFailedOne) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.pushConfiguration();
  ntoshost::clearFaults();
  trace.setMinPrefixWidth(8);
  trace.pushConfiguration();
  trace.setMinPrefixWidth(9);
  trace.popConfiguration();
  EXPECT_EQ(trace.getMinPrefixWidth(), 8u);
}

TEST(TraceFaults, StackGrowsByDoubling) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  u64 growths = 0;
  for (int push = 0; push < 33; ++push) {
    ntoshost::watchCalls(ntoshost::kFaultMemory);
    trace.pushConfiguration();
    growths += ntoshost::fallibleCallsSeen() - 1;
  }
  EXPECT_EQ(growths, 7u);  // to 1, 2, 4, 8, 16, 32, 64
}

TEST(TraceFaults, FailedPopConfiguresNothingAndFreesTheText) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  u64 const before = ntoshost::outstandingBlocks();
  trace.pushConfiguration();
  trace.setMinPrefixWidth(2);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  trace.popConfiguration();
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(trace.getMinPrefixWidth(), 2u);
  EXPECT_LE(ntoshost::outstandingBlocks(), before + 1);  // the storage of the stack stays
  expectThatItWrites(trace, kept);
}

namespace {

class tCountingTrace : public tOwnTrace {
 public:
  using tOwnTrace::configure;
  using tOwnTrace::tOwnTrace;

  void configure(int argc, char** argv) override {
    ++calls;
    tOwnTrace::configure(argc, argv);
  }

  int calls = 0;
};

}  // namespace

TEST(TraceFaults, PopConfiguresOnceOrWhenMemoryIsExhaustedNotAtAll) {
  tKeptLines kept;
  tCountingTrace trace(kept);
  trace.pushConfiguration();
  trace.pushConfiguration();
  trace.popConfiguration();
  EXPECT_EQ(trace.calls, 1);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.popConfiguration();
  ntoshost::clearFaults();
  EXPECT_EQ(trace.calls, 1);
}

TEST(TraceFaults, DestinationIsSwitchedWhateverAllocationFails) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  u64 const failures = failEachAllocation([&] {
    trace.setDestination(first);
    EXPECT_EQ(trace.setDestination(second), &first);
    EXPECT_EQ(trace.getDestination(), &second);
    expectThatItWrites(trace, second);
  });
  EXPECT_EQ(failures, 0u);  // settings of usual length need no memory
}

TEST(TraceFaults, OldDestinationComesBackWhateverAllocationFails) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  u64 const failures = failEachAllocation([&] {
    first.events.clear();
    second.failingOpens = 1;
    EXPECT_EQ(trace.setDestination(second), &first);
    EXPECT_EQ(trace.getDestination(), &first);
    EXPECT_EQ(first.events, "close configure open ");
    EXPECT_EQ(first.words, std::vector<std::string>({"--destination", "kept"}));
    expectThatItWrites(trace, first);
  });
  EXPECT_EQ(failures, 0u);
}

TEST(TraceFaults, LongSettingsComeBackOrTheirDestinationIsNotLeft) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  first.settings = " --destination " + std::string(1000, 'x');
  u64 const failures = failEachAllocation([&] {
    first.events.clear();
    second.failingOpens = 1;
    EXPECT_EQ(trace.setDestination(second), &first);
    EXPECT_EQ(trace.getDestination(), &first);
    EXPECT_EQ(first.events, hasFailed() ? "" : "close configure open ");
    expectThatItWrites(trace, first);
  });
  EXPECT_EQ(failures, 1u);
}

TEST(TraceFaults, ManyWordsOfSettingsComeBackOrTheirDestinationIsNotLeft) {
  tKeptLines first;
  tKeptLines second;
  tOwnTrace trace(first);
  first.settings = " a b c d e f g h i j k l m n o p q";
  u64 const failures = failEachAllocation([&] {
    first.events.clear();
    first.words.clear();
    second.failingOpens = 1;
    EXPECT_EQ(trace.setDestination(second), &first);
    EXPECT_EQ(first.events, hasFailed() ? "" : "close configure open ");
    EXPECT_EQ(first.words.size(), hasFailed() ? 0u : 17u);
    expectThatItWrites(trace, first);
  });
  EXPECT_EQ(failures, 1u);
}

TEST(TraceFaults, TheDebuggerPrintIsReachedWithoutMemoryForLongSettings) {
  tKeptLines first;
  tOwnTrace trace(first);
  first.settings = " --destination " + std::string(1000, 'x');
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.setDestination(tVEXTraceDestination::getInstance());
  ntoshost::clearFaults();
  EXPECT_EQ(trace.getDestination(), &tVEXTraceDestination::getInstance());
}

TEST(TraceFaults, DebuggerPrintTakesOverWhateverAllocationFails) {
  tKeptLines first;
  tKeptLines second;
  tCapturedPrint captured;
  u64 const failures = failEachAllocation([&] {
    tOwnTrace trace(first);
    captured.prints.clear();
    first.failingOpens = 1;
    second.failingOpens = 1;
    EXPECT_EQ(trace.setDestination(second), &tVEXTraceDestination::getInstance());
    EXPECT_EQ(captured.text(),
              "Trace destination couldn't be opened and previous destination couldn't be "
              "restored!\nThe trace destination has been changed to VEX print to debugger by "
              "default\n");
    EXPECT_EQ(captured.prints.size(), 2u);
  });
  EXPECT_EQ(failures, 2u);  // the filter of the stream and its term
}

TEST(TraceFaults, MutexSwitchIsOnWithoutALockWhenTheLockCannotBeOpened) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.enableMutex();
  ntoshost::clearFaults();
  EXPECT_GE(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(trace.mutexIsEnabled(), 1u);
  trace.setMinPrefixWidth(0);
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
  trace.put("line").endl();
  trace.disableMutex();
  EXPECT_EQ(trace.mutexIsEnabled(), 0u);
  EXPECT_EQ(kept.text(), "line\n");
}

TEST(TraceFaults, NextEnableMutexTriesToOpenTheLockAgain) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.enableMutex();
  ntoshost::clearFaults();
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  trace.enableMutex();
  EXPECT_GE(ntoshost::fallibleCallsSeen(), 1u);
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  trace.enableMutex();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(TraceFaults, SwitchingTheMutexLeaksNothingWhateverAllocationFails) {
  u64 const failures = failEachAllocation([] {
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure("--mutex on");
    trace.put("line").endl();
    EXPECT_EQ(kept.text(), "line\n");
  });
  EXPECT_GE(failures, 4u);
}

TEST(TraceFaults, WritingAllocatesNothing) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  trace.putPrefix("test", tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0), 1, "a/file", 100,
                  tTrace::kTraceLine);
  trace.put("text").put(-5, 2).put(&kept, 64, 4).put(true).put(tSSVersion()).endl();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(TraceFaults, DestructionOfAStackedStreamSurvivesExhaustedMemory) {
  u64 const before = ntoshost::outstandingBlocks();
  {
    tKeptLines kept;
    tOwnTrace trace(kept);
    for (int push = 0; push < 5; ++push) trace.pushConfiguration();
    ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  }
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}
