// Every switch between the destinations that options name, with each fallible call of it failing in
// turn: allocations and file calls. Each time the stream writes somewhere, its other settings are
// as they were or as they should be, and nothing is left behind.

#include "capturedPrint.h"
#include "keptLines.h"
#include "ntos/driveFolder.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "vexk/serialSupport.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tFileTraceDestination;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

constexpr u32 kAllCalls = ntoshost::kFaultMemory | ntoshost::kFaultFile;
constexpr char const* kSinks[] = {"vex", "serial 9600", "file C:/one.out"};

std::string withoutDestination(std::string const& settings) {
  return settings.substr(settings.find(" --compname"));
}

// All three destinations with something behind them that can be looked at.
class TraceSinkFaults : public testing::Test {
 protected:
  TraceSinkFaults() {
    tSerialTraceDestination::getInstance();
    tFileTraceDestination::getInstance();
  }
  ~TraceSinkFaults() override {
    ntoshost::clearFaults();
    tSerialTraceDestination::getInstance()->close();
    tFileTraceDestination::getInstance()->close();
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
  }

  static void choose(tOwnTrace& trace, std::string const& sink) {
    trace.configure(("--destination " + sink).c_str());
  }

  // What the current destination has received.
  std::string contentOf(iTraceDestination* destination) const {
    if (destination == tSerialTraceDestination::getInstance()) return port.content();
    if (destination == tFileTraceDestination::getInstance()) return drive.read("one.out");
    return print.text();
  }

  bool writes(tOwnTrace& trace) const {
    std::string const before = contentOf(trace.getDestination());
    trace.put("still writing").endl();
    std::string const added = contentOf(trace.getDestination()).substr(before.size());
    return added.find("still writing") == 0;
  }

  // Nothing is left but the stream's own blocks once it is on the debugger print again.
  void expectNothingLeft(tOwnTrace& trace, u64 blocks, std::string const& what) const {
    choose(trace, "vex");
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u) << what;
    EXPECT_LE(ntoshost::outstandingBlocks(), blocks) << what;  // less: a filter term was lost
  }

  void switchWithFailure(std::string const& from, std::string const& to, u64 n) const {
    std::string const what = from + " to " + to + ", call " + std::to_string(n);
    ntoshost::clearFaults();
    tOwnTrace trace(tVEXTraceDestination::getInstance());
    u64 const blocks = ntoshost::outstandingBlocks();
    choose(trace, from);
    std::string const settings = settingsOf(trace);
    ntoshost::failNth(kAllCalls, n);
    choose(trace, to);
    ntoshost::clearFaults();
    EXPECT_TRUE(writes(trace)) << what;
    EXPECT_EQ(withoutDestination(settingsOf(trace)), withoutDestination(settings)) << what;
    bool const isMoved = isOnOneOf(trace, {to});
    EXPECT_TRUE(isMoved || ntoshost::faultsInjected() != 0) << what;
    if (!isMoved) {
      EXPECT_EQ(settingsOf(trace), settings) << what;
    }
    expectNothingLeft(trace, blocks, what);
  }

  // A stream on `to` gets the configuration back that was saved on `from`.
  void popWithFailure(std::string const& from, std::string const& to, u64 n) const {
    std::string const what = "back to " + from + " from " + to + ", call " + std::to_string(n);
    ntoshost::clearFaults();
    tOwnTrace trace(tVEXTraceDestination::getInstance());
    choose(trace, from);
    u64 const blocks = blocksOnDebuggerPrint(trace, from);
    trace.pushConfiguration();
    choose(trace, to);
    trace.setMinPrefixWidth(7);
    ntoshost::failNth(kAllCalls, n);
    trace.popConfiguration();
    ntoshost::clearFaults();
    EXPECT_TRUE(writes(trace)) << what;
    EXPECT_TRUE(isOnOneOf(trace, {from, to, "vex"})) << what;
    EXPECT_TRUE(trace.getMinPrefixWidth() == 50 || trace.getMinPrefixWidth() == 7) << what;
    expectNothingLeft(trace, blocks + 1, what);  // the storage of the stack stays
  }

  static u64 blocksOnDebuggerPrint(tOwnTrace& trace, std::string const& sink) {
    choose(trace, "vex");
    u64 const blocks = ntoshost::outstandingBlocks();
    choose(trace, sink);
    return blocks;
  }

  static bool isOnOneOf(tOwnTrace& trace, std::vector<std::string> const& sinks) {
    std::string const settings = settingsOf(trace);
    for (std::string const& sink : sinks) {
      if (settings.find("--destination " + sink + " ") != std::string::npos) return true;
    }
    return false;
  }

  tDriveFolder drive;
  tSerialFile port;
  tCapturedPrint print;
};

}  // namespace

TEST_F(TraceSinkFaults, EverySwitchLeavesAStreamThatWrites) {
  for (std::string const from : kSinks) {
    for (std::string const to : kSinks) {
      u64 const failures =
          ntoshost::failEachCall(kAllCalls, [&](u64 n) { switchWithFailure(from, to, n); });
      EXPECT_GE(failures, 1u) << from << " to " << to;  // the words of the option at least
    }
  }
}

TEST_F(TraceSinkFaults, EveryPopLeavesAStreamThatWrites) {
  for (std::string const from : kSinks) {
    for (std::string const to : kSinks) {
      u64 const failures =
          ntoshost::failEachCall(kAllCalls, [&](u64 n) { popWithFailure(from, to, n); });
      EXPECT_GE(failures, 2u) << from << " to " << to;
    }
  }
}

TEST_F(TraceSinkFaults, EveryPushLeavesTheSettingsAlone) {
  for (std::string const from : kSinks) {
    u64 const failures = ntoshost::failEachCall(kAllCalls, [&](u64 n) {
      ntoshost::clearFaults();
      tOwnTrace trace(tVEXTraceDestination::getInstance());
      choose(trace, from);
      std::string const settings = inquiredText(trace);
      ntoshost::failNth(kAllCalls, n);
      trace.pushConfiguration();
      ntoshost::clearFaults();
      EXPECT_EQ(inquiredText(trace), settings) << from << ", call " << n;
      EXPECT_TRUE(writes(trace)) << from << ", call " << n;
      choose(trace, "vex");
    });
    EXPECT_EQ(failures, 2u) << from;
  }
}

TEST_F(TraceSinkFaults, CaptureThatGoesIsLeftWhateverFails) {
  u64 const failures = ntoshost::failEachCall(kAllCalls, [&](u64) {
    char text[128];
    i32 position = 0;
    {
      tCTFTraceDestination capture(text, position, sizeof(text), nullptr);
      nOXDIAG100::tTrace::getInstance().setDestination(capture);
      EXPECT_EQ(nOXDIAG100::tTrace::getInstance().getDestination(), &capture);
    }
    EXPECT_EQ(nOXDIAG100::tTrace::getInstance().getDestination(),
              &tVEXTraceDestination::getInstance());
  });
  EXPECT_EQ(failures, 0u);  // neither switch needs memory
}

// The words are given as words, so that no memory is needed before the switch.
TEST_F(TraceSinkFaults, FileThatDoesNotOpenLeavesTheFormerFileWithoutAnyMemory) {
  tOwnTrace trace(tVEXTraceDestination::getInstance());
  choose(trace, "file C:/one.out");
  std::string const settings = settingsOf(trace);
  char option[] = "--destination";
  char name[] = "file";
  char missing[] = "C:/missing/two.out";
  char* words[] = {option, name, missing};
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  trace.configure(3, words);
  ntoshost::clearFaults();
  EXPECT_EQ(settingsOf(trace), settings);
  EXPECT_TRUE(writes(trace));
  choose(trace, "vex");
}
