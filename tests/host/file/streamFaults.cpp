// A trace stream whose destination is a file, while calls fail: it still writes somewhere, nothing
// is left behind, and what was configured before stands.

#include "fileCalls.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/capturedPrint.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"

using nOXDIAG100::tVEXTraceDestination;

namespace {

constexpr u32 kAllCalls = ntoshost::kFaultFile | ntoshost::kFaultMemory;

class FileStreamFaults : public tFileTest {
 protected:
  // The instance exists from here on, so its creation is not among the failing calls.
  FileStreamFaults() { instance().configure(0, nullptr); }
  ~FileStreamFaults() override { instance().close(); }

  static tFileTraceDestination& instance() { return *tFileTraceDestination::getInstance(); }
};

// Sends another stream elsewhere when it is closed.
class tReleasingDestination final : public tKeptLines {
 public:
  void close() override {
    tKeptLines::close();
    other->setDestination(elsewhere);
  }

  tOwnTrace* other = nullptr;
  tKeptLines elsewhere;
};

// True when text that is put into the stream now arrives.
bool writesToFile(tOwnTrace& trace, tDriveFolder const& drive, std::string const& name) {
  std::string const before = drive.read(name);
  trace.put("still writing").endl();
  return drive.read(name) == before + "still writing\r\n";
}

bool writesTo(tOwnTrace& trace, tKeptLines& kept) {
  kept.pieces.clear();
  trace.put("still writing").endl();
  return kept.text() == "still writing\n";
}

bool hasFailed() {
  return ntoshost::faultsInjected() != 0;
}

}  // namespace

TEST_F(FileStreamFaults, FailedSwitchToTheFileKeepsTheOldDestination) {
  u64 fallbacks = 0;
  u64 const failures = ntoshost::failEachCall(kAllCalls, [&](u64 n) {
    u64 const blocks = ntoshost::outstandingBlocks();
    {
      tKeptLines kept;
      tOwnTrace trace(kept);
      trace.configure("--destination file C:/one.out overwrite");
      ntoshost::clearFaults();
      bool const isOnFile = trace.getDestination() == &instance();
      if (!isOnFile) ++fallbacks;
      EXPECT_TRUE(isOnFile || trace.getDestination() == &kept) << "call " << n;
      EXPECT_EQ(ntoshost::outstandingHandles(), isOnFile ? 2u : 0u) << "call " << n;
      EXPECT_TRUE(isOnFile ? writesToFile(trace, drive, "one.out") : writesTo(trace, kept))
          << "call " << n;
      EXPECT_TRUE(isOnFile || hasFailed());
      trace.setDestination(kept);
    }
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u) << "call " << n;
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks) << "call " << n;
  });
  EXPECT_GE(failures, 5u);
  EXPECT_GE(fallbacks, 2u);
}

TEST_F(FileStreamFaults, FailedSwitchToAnotherFileKeepsTheOldFile) {
  for (u64 n = 1; n <= 2; ++n) {  // the drive, the file
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure("--destination file C:/one.out overwrite");
    trace.put("first").endl();
    ntoshost::failNth(ntoshost::kFaultFileOpen, n);
    trace.configure("--destination file C:/two.out overwrite");
    ntoshost::clearFaults();
    EXPECT_TRUE(hasFailed());
    EXPECT_EQ(trace.getDestination(), &instance());
    EXPECT_EQ(settingsOf(instance()), " --destination file C:/one.out");
    EXPECT_EQ(drive.read("one.out"),
              "first\r\n"
              "Switching trace destination to File = C:/two.out\r\n"
              "Trace destination couldn't be opened!\r\n"
              "Trace destination remains unchanged.\r\n");
    EXPECT_TRUE(writesToFile(trace, drive, "one.out"));
    EXPECT_FALSE(drive.has("two.out"));
    trace.setDestination(kept);
  }
}

TEST_F(FileStreamFaults, DebuggerPrintTakesOverWhenNoFileOpens) {
  tKeptLines kept;
  tCapturedPrint captured;
  tOwnTrace trace(kept);
  trace.configure("--destination file C:/one.out overwrite");
  trace.put("first").endl();
  ntoshost::failFrom(ntoshost::kFaultFileOpen, 1);
  trace.configure("--destination file C:/two.out overwrite");
  ntoshost::clearFaults();
  trace.put("still writing").endl();
  EXPECT_EQ(captured.text(),
            "Trace destination couldn't be opened and previous destination couldn't be "
            "restored!\nThe trace destination has been changed to VEX print to debugger by "
            "default\nstill writing\n");
  EXPECT_EQ(drive.read("one.out"), "first\r\nSwitching trace destination to File = C:/two.out\r\n");
  EXPECT_FALSE(drive.has("two.out"));
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}

TEST_F(FileStreamFaults, FailedPopLeavesTheStreamWithADestinationThatWrites) {
  u64 const failures = ntoshost::failEachCall(kAllCalls, [&](u64 n) {
    ntoshost::clearFaults();
    u64 const blocks = ntoshost::outstandingBlocks();
    {
      tKeptLines kept;
      tCapturedPrint captured;
      tOwnTrace trace(kept);
      trace.configure("--destination file C:/one.out overwrite");
      trace.pushConfiguration();
      trace.configure("--destination vex");
      ntoshost::failNth(kAllCalls, n);
      trace.popConfiguration();
      ntoshost::clearFaults();
      captured.prints.clear();
      bool const isOnFile = trace.getDestination() == &instance();
      EXPECT_EQ(ntoshost::outstandingHandles(), isOnFile ? 2u : 0u) << "call " << n;
      EXPECT_TRUE(writesToFile(trace, drive, "one.out") == isOnFile) << "call " << n;
      EXPECT_EQ(captured.text(), isOnFile ? "" : "still writing\n") << "call " << n;
      EXPECT_TRUE(isOnFile || hasFailed());
      trace.setDestination(kept);
    }
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocks) << "call " << n;
  });
  EXPECT_GE(failures, 4u);
}

TEST_F(FileStreamFaults, FailedPushKeepsTheFile) {
  u64 const failures = ntoshost::failEachCall(kAllCalls, [&](u64 n) {
    ntoshost::clearFaults();
    tKeptLines kept;
    tOwnTrace trace(kept);
    trace.configure("--destination file C:/one.out overwrite");
    ntoshost::failNth(kAllCalls, n);
    trace.pushConfiguration();
    ntoshost::clearFaults();
    EXPECT_EQ(trace.getDestination(), &instance()) << "call " << n;
    EXPECT_TRUE(writesToFile(trace, drive, "one.out")) << "call " << n;
    trace.setDestination(kept);
  });
  EXPECT_GE(failures, 1u);
}

TEST_F(FileStreamFaults, DriveThatIsTakenAwayGivesWayToTheOldDestination) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  ntoshost::unmountDrive('C');
  trace.configure("--destination file C:/one.out");
  EXPECT_EQ(trace.getDestination(), &kept);
  EXPECT_TRUE(writesTo(trace, kept));
}

TEST_F(FileStreamFaults, LinesAtDispatchLevelAreDroppedAndLaterOnesWritten) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--destination file C:/one.out overwrite");
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    trace.put("dropped").endl();
  }
  trace.put("seen").endl();
  EXPECT_EQ(drive.read("one.out"), "seen\r\n");
  trace.setDestination(kept);
}

TEST_F(FileStreamFaults, LinesUnderTheMutexAreWritten) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--destination file C:/one.out overwrite --mutex on --prefixwidth 0");
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, nOXDIAG100::tTrace::kTraceLine);
  trace.put("locked").endl();
  EXPECT_EQ(drive.read("one.out"), "locked\r\n");
  trace.disableMutex();
  trace.setDestination(kept);
}

TEST_F(FileStreamFaults, AFileThatAnotherStreamHasIsOpenedAnewForItsOwnNewWordsAlone) {
  tKeptLines kept;
  tOwnTrace other(kept);
  tOwnTrace trace(kept);
  other.configure("--destination file C:/one.out");
  ntoshost::forgetFileCalls();
  trace.configure("--destination recorder 32 --destination file");
  EXPECT_EQ(trace.getDestination(), &instance());
  trace.setDestination(kept);
  trace.configure("--destination file --destination file");
  EXPECT_EQ(trace.getDestination(), &instance());
  EXPECT_EQ(callsOf(FileCallKind::Create).size(), 0u);
  trace.setDestination(kept);
  trace.configure("--destination file C:/two.out --destination file");
  EXPECT_EQ(callsOf(FileCallKind::Create).size(), 2u);
  EXPECT_TRUE(writesToFile(other, drive, "two.out"));
  trace.setDestination(kept);
  other.setDestination(kept);
}

TEST_F(FileStreamFaults, AFileThatTwoStreamsHaveAndNobodyCanOpenIsLeftByBoth) {
  tKeptLines kept;
  tOwnTrace other(kept);
  tOwnTrace trace(kept);
  other.configure("--destination file C:/one.out");
  ASSERT_EQ(other.getDestination(), &instance());
  ntoshost::failFileCalls(FileCallKind::Create, 1, 100, STATUS_ACCESS_DENIED);
  trace.configure("--destination file C:/two.out");
  stopFailing(FileCallKind::Create);
  EXPECT_EQ(trace.getDestination(), &kept);
  EXPECT_EQ(other.getDestination(), &tVEXTraceDestination::getInstance());
}

TEST_F(FileStreamFaults, AFileThatItsStreamLeavesAsTheFormerDestinationClosesIsOpenedForTheOther) {
  tKeptLines kept;
  tReleasingDestination releasing;
  tOwnTrace other(kept);
  tOwnTrace trace(releasing);
  releasing.other = &other;
  other.configure("--destination file C:/one.out");
  ASSERT_EQ(other.getDestination(), &instance());
  trace.configure("--destination file C:/two.out");
  EXPECT_EQ(other.getDestination(), &releasing.elsewhere);
  EXPECT_EQ(trace.getDestination(), &instance());
  EXPECT_TRUE(writesToFile(trace, drive, "two.out"));
  trace.setDestination(kept);
}
