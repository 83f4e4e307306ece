// Saving and restoring the settings of the trace stream.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

constexpr char kOtherSettings[] =
    "--off --compname off --compver on --linenumber off --filename off --filepath on --threadid on "
    "--timestamp on --timedelta on --verbosity on --indent off --truncation off --prefixwidth 9 "
    "--filter line<7 --mutex on";

}  // namespace

TEST(TraceConfigurationStack, PopOfAnEmptyStackChangesNothing) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  tTraceState const before(trace, 0);
  trace.popConfiguration();
  tTraceState const after(trace, 1);
  EXPECT_STREQ(before.get(), after.get());
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST(TraceConfigurationStack, PushChangesNothing) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  tTraceState const before(trace, 0);
  trace.pushConfiguration();
  tTraceState const after(trace, 1);
  EXPECT_STREQ(before.get(), after.get());
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST(TraceConfigurationStack, PopRestoresEverySetting) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.pushConfiguration();
  tTraceState before(trace, 0);
  trace.configure(kOtherSettings);
  trace.popConfiguration();
  tTraceState after(trace, 1);
  EXPECT_STREQ(before.withoutCalibration(), after.withoutCalibration());
}

TEST(TraceConfigurationStack, PopRestoresUnusualSettingsToo) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.configure(kOtherSettings);
  trace.pushConfiguration();
  tTraceState before(trace, 0);
  trace.configure(
      "--on --compname --compver off --linenumber --filename --filepath off --threadid "
      "off --timestamp off --timedelta off --verbosity off --indent --truncation "
      "--prefixwidth 50 --filter --mutex off");
  trace.popConfiguration();
  tTraceState after(trace, 1);
  EXPECT_STREQ(before.withoutCalibration(), after.withoutCalibration());
}

TEST(TraceConfigurationStack, LastPushedIsPoppedFirst) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  for (u32 width = 1; width <= 20; ++width) {
    trace.setMinPrefixWidth(width);
    trace.pushConfiguration();
  }
  trace.setMinPrefixWidth(0);
  for (u32 width = 20; width >= 1; --width) {
    trace.popConfiguration();
    EXPECT_EQ(trace.getMinPrefixWidth(), width);
  }
  trace.setMinPrefixWidth(77);
  trace.popConfiguration();
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{77});
}

TEST(TraceConfigurationStack, PopRestoresTheDebuggerPrint) {
  tRecordingDestination recorder;
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.pushConfiguration();
  trace.setDestination(recorder);
  trace.popConfiguration();
  EXPECT_TRUE(trace.getDestination() == &tVEXTraceDestination::getInstance());
  EXPECT_STREQ(recorder.text(), "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceConfigurationStack, PopInstallsTheDestinationEvenWhenItIsCurrent) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.pushConfiguration();
  trace.popConfiguration();
  EXPECT_TRUE(trace.getDestination() == &tVEXTraceDestination::getInstance());
}

TEST(TraceConfigurationStack, TermsAddedToAFilterThatWasEmptyAtThePushSurviveThePop) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.configure("--filter");
  trace.pushConfiguration();
  trace.configure("--filter line==5");
  trace.popConfiguration();
  EXPECT_STREQ(tFilterText(trace).text, " --filter \"linenumber==5\"");
}

TEST(TraceConfigurationStack, FilterWithBlanksIsRestoredWhole) {
  tPrivateTrace trace(tVEXTraceDestination::getInstance());
  trace.configure("--filter \"verbosity>=1 && comp==a || file!=b/c\"");
  trace.pushConfiguration();
  trace.configure("--filter");
  trace.popConfiguration();
  EXPECT_STREQ(tFilterText(trace).text,
               " --filter \"verbosity>=1 && compname==a || filename!=b/c\"");
}

TEST(TraceConfigurationStack, PopOfASinkThatOptionsCannotNameLeavesTheDestinationAlone) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  trace.pushConfiguration();
  trace.configure("--prefixwidth 3");
  trace.popConfiguration();
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{50});
  EXPECT_TRUE(trace.getDestination() == &recorder);
  EXPECT_EQ(recorder.pieceCount(), u32{0});
}

TEST(TraceConfigurationStack, InquiredTextConfiguresAnotherStreamAlike) {
  tPrivateTrace source(tVEXTraceDestination::getInstance());
  source.configure(kOtherSettings);
  tTraceState given(source, 0);
  tPrivateTrace target(tVEXTraceDestination::getInstance());
  target.configure(given.get());
  given.withoutCalibration();
  tTraceState taken(target, 1);
  EXPECT_STREQ(given.get(), taken.withoutCalibration());
}

TEST(TraceConfigurationStack, DestructionRestoresEverySavedConfiguration) {
  tRecordingDestination recorder;
  {
    tPrivateTrace trace(tVEXTraceDestination::getInstance());
    trace.pushConfiguration();
    trace.pushConfiguration();
    trace.setDestination(recorder);
    recorder.clear();
  }
  EXPECT_STREQ(recorder.events(), "put measure inquire close ");
  EXPECT_STREQ(recorder.text(), "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceConfigurationStack, DestructionClosesAMutexThatARestoredConfigurationOpened) {
  tRecordingDestination recorder;
  {
    tPrivateTrace trace(recorder);
    trace.enableMutex();
    trace.pushConfiguration();
    trace.disableMutex();
  }
  tPrivateTrace next(recorder);
  next.enableMutex();
  next.put("free").endl();
  EXPECT_STREQ(recorder.text(), "free\n");
}
