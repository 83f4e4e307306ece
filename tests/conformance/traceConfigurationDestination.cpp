// Switching the destination of the trace stream, by option and by call.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tTrace;

// A stream on the first of two recorders.
struct tTwoDestinations {
  tRecordingDestination first{0};
  tRecordingDestination second{1};
  tPrivateTrace trace{first};

  tTwoDestinations() {
    first.description = "the first";
    second.description = "the second";
  }
};

// Sends its stream back to the debugger when it goes, as a destination of a component does.
class tLeavingDestination : public tRecordingDestination {
 public:
  explicit tLeavingDestination(tTrace*& trace) : trace(trace) {}
  ~tLeavingDestination() override {
    if (trace->getDestination() == this) trace->configure("--destination vex");
    if (trace->getDestination() == this) leaveStream();
  }

 private:
  tTrace*& trace;
};

}  // namespace

TEST(TraceSetDestination, NewDestinationBecomesCurrentAndTheOldIsReturned) {
  tTwoDestinations two;
  EXPECT_TRUE(two.trace.setDestination(two.second) == &two.first);
  EXPECT_TRUE(two.trace.getDestination() == &two.second);
  two.trace.put("line").endl();
  EXPECT_STREQ(two.second.text(), "line\n");
}

TEST(TraceSetDestination, OldDestinationIsToldAskedAndClosedInThisOrder) {
  tTwoDestinations two;
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.text(), "Switching trace destination to the second\n");
  EXPECT_STREQ(two.first.events(), "put measure inquire close ");
}

TEST(TraceSetDestination, NewDestinationIsOnlyOpened) {
  tTwoDestinations two;
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.second.events(), "open ");
}

TEST(TraceSetDestination, UnfinishedTextHeadsTheAnnouncement) {
  tTwoDestinations two;
  two.trace.put("unfinished ");
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.text(), "unfinished Switching trace destination to the second\n");
}

TEST(TraceSetDestination, DisabledStreamSwitchesWithoutALine) {
  tTwoDestinations two;
  two.trace.disable();
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.events(), "measure inquire close ");
  EXPECT_TRUE(two.trace.getDestination() == &two.second);
}

TEST(TraceSetDestination, CurrentDestinationIsClosedAndOpenedAnew) {
  tTwoDestinations two;
  EXPECT_TRUE(two.trace.setDestination(two.first) == &two.first);
  EXPECT_STREQ(two.first.events(), "put measure inquire close open ");
  EXPECT_STREQ(two.first.text(), "Switching trace destination to the first\n");
  EXPECT_TRUE(two.trace.getDestination() == &two.first);
}

TEST(TraceSetDestination, OldDestinationIsRestoredWhenTheNewOneDoesNotOpen) {
  tTwoDestinations two;
  two.second.failingOpens = 1;
  EXPECT_TRUE(two.trace.setDestination(two.second) == &two.first);
  EXPECT_TRUE(two.trace.getDestination() == &two.first);
  EXPECT_STREQ(two.first.events(),
               "put measure inquire close configure(--destination|recording) open put put ");
  EXPECT_STREQ(two.second.events(), "open-fails ");
  EXPECT_TRUE(two.first.isOpen);
}

TEST(TraceSetDestination, RestoredDestinationIsToldInTwoLines) {
  tTwoDestinations two;
  two.second.failingOpens = 1;
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.text(),
               "Switching trace destination to the second\n"
               "Trace destination couldn't be opened!\n"
               "Trace destination remains unchanged.\n");
  EXPECT_EQ(two.first.pieceCount(), u32{3});
}

TEST(TraceSetDestination, SettingsAreSplitIntoWordsForTheRestoredDestination) {
  tTwoDestinations two;
  two.first.settings = " --destination \"a b\"  c\t\"\" d";
  two.second.failingOpens = 1;
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.events(),
               "put measure inquire close configure(--destination|a b|c||d) open put put ");
}

TEST(TraceSetDestination, RestoredDestinationWithoutSettingsIsOnlyOpened) {
  tTwoDestinations two;
  two.first.settings = "";
  two.second.failingOpens = 1;
  two.trace.setDestination(two.second);
  EXPECT_STREQ(two.first.events(), "put measure inquire close open put put ");
}

TEST(TraceSetDestination, DebuggerPrintTakesOverWhenNeitherOpens) {
  tTwoDestinations two;
  two.first.failingOpens = 1;
  two.second.failingOpens = 1;
  EXPECT_TRUE(two.trace.setDestination(two.second) == debuggerPrint());
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
  EXPECT_STREQ(two.first.events(),
               "put measure inquire close configure(--destination|recording) open-fails ");
  EXPECT_STREQ(two.first.text(), "Switching trace destination to the second\n");
}

TEST(TraceSetDestination, CurrentDestinationThatDoesNotReopenFallsBackToo) {
  tTwoDestinations two;
  two.first.failingOpens = 2;
  EXPECT_TRUE(two.trace.setDestination(two.first) == debuggerPrint());
  EXPECT_STREQ(two.first.events(),
               "put measure inquire close open-fails configure(--destination|recording) "
               "open-fails ");
}

TEST(TraceSetDestination, LineMutexOfTheCallingThreadIsNotLost) {
  tTwoDestinations two;
  two.trace.enableMutex();
  two.trace.setDestination(two.second);
  two.trace.setMinPrefixWidth(0);
  two.trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
  two.trace.put("line").endl();
  two.trace.disableMutex();
  EXPECT_STREQ(two.second.text(), "line\n");
}

TEST(TraceDestinationOption, VexInstallsTheDebuggerPrint) {
  tTwoDestinations two;
  two.trace.configure("--destination vex");
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
  EXPECT_STREQ(two.first.text(), "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceDestinationOption, NoNameInstallsTheDebuggerPrint) {
  tTwoDestinations two;
  two.trace.configure("--destination");
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
}

TEST(TraceDestinationOption, OptionInPlaceOfANameIsSkippedAndInstallsTheDebuggerPrint) {
  tTwoDestinations two;
  two.trace.configure("--destination --compname off");
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
  EXPECT_EQ(two.trace.componentNameIsEnabled(), u32{1});
}

TEST(TraceDestinationOption, OptionBehindTheSkippedOneIsRead) {
  tTwoDestinations two;
  two.trace.configure("--destination --compname --linenumber off");
  EXPECT_EQ(two.trace.componentNameIsEnabled(), u32{1});
  EXPECT_EQ(two.trace.lineNumberIsEnabled(), u32{0});
}

TEST(TraceDestinationOption, UnknownNameChoosesNoDestination) {
  tTwoDestinations two;
  two.trace.configure("--destination bogus");
  EXPECT_TRUE(two.trace.getDestination() == &two.first);
  EXPECT_EQ(two.first.pieceCount(), u32{0});
}

TEST(TraceDestinationOption, UnknownNameLeavesAnEarlierChoiceStanding) {
  tTwoDestinations two;
  two.trace.configure("--destination vex --destination bogus on");
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
}

TEST(TraceDestinationOption, NamesAreComparedExactly) {
  tTwoDestinations two;
  two.trace.configure("--destination VEX");
  two.trace.configure("--destination ve");
  two.trace.configure("--destination \"\"");
  EXPECT_TRUE(two.trace.getDestination() == &two.first);
}

TEST(TraceDestinationOption, WordsOfTheDestinationAreNoOptionsOfTheStream) {
  tTwoDestinations two;
  two.trace.configure("--destination vex off on 9600 --compname off");
  EXPECT_TRUE(two.trace.getDestination() == debuggerPrint());
  EXPECT_EQ(two.trace.isEnabled(), u32{1});
  EXPECT_EQ(two.trace.componentNameIsEnabled(), u32{0});
}

TEST(TraceDestinationOption, ChoosingTwiceInstallsOnce) {
  tTwoDestinations two;
  two.trace.configure("--destination vex --destination vex");
  EXPECT_STREQ(two.first.events(), "put measure inquire close ");
}

TEST(TraceDestinationOption, StreamIsSwitchedOnBeforeItAnnouncesTheDestination) {
  tTwoDestinations two;
  two.trace.disable();
  two.trace.configure("--destination vex --on");
  EXPECT_STREQ(two.first.text(), "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceDestinationOption, DestinationThatGoesSendsItsStreamToTheDebugger) {
  tTrace* stream = nullptr;
  tPrivateTrace trace(*debuggerPrint());
  stream = &trace;
  {
    tLeavingDestination leaving(stream);
    trace.setDestination(leaving);
  }
  EXPECT_TRUE(trace.getDestination() == debuggerPrint());
  EXPECT_STREQ(recordStorage[0].text, "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceDestinationOption, DestinationThatGoesWhileNotCurrentLeavesTheStreamAlone) {
  tTwoDestinations two;
  tTrace* stream = &two.trace;
  { tLeavingDestination leaving(stream); }
  EXPECT_TRUE(two.trace.getDestination() == &two.first);
}
