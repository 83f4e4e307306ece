#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tTrace;

// One switch by its three operations.
struct tSwitch {
  void (tTrace::*enable)();
  void (tTrace::*disable)();
  u32 (tTrace::*isEnabled)() const;
  u32 atTheStart;
};

#define TRACE_SWITCH(Name, name, atTheStart) \
  { &tTrace::enable##Name, &tTrace::disable##Name, &tTrace::name##IsEnabled, atTheStart }

tSwitch getSwitch(u32 index) {
  tSwitch const switches[] = {
      {&tTrace::enable, &tTrace::disable, &tTrace::isEnabled, 1},
      TRACE_SWITCH(ComponentName, componentName, 1),
      TRACE_SWITCH(ComponentVersion, componentVersion, 0),
      TRACE_SWITCH(LineNumber, lineNumber, 1),
      TRACE_SWITCH(FileName, fileName, 1),
      TRACE_SWITCH(FilePath, filePath, 0),
      TRACE_SWITCH(TimeStamp, timeStamp, 0),
      TRACE_SWITCH(TimeDelta, timeDelta, 0),
      TRACE_SWITCH(Verbosity, verbosity, 0),
      TRACE_SWITCH(ThreadId, threadId, 0),
      TRACE_SWITCH(Mutex, mutex, 0),
      TRACE_SWITCH(Indenting, indenting, 1),
      TRACE_SWITCH(Truncation, truncation, 1),
  };
  return switches[index];
}

constexpr u32 kSwitchCount = 13;

class TraceSwitches : public tRecordedStream {};

}  // namespace

TEST_F(TraceSwitches, FreshStreamHasTheDocumentedSettings) {
  for (u32 index = 0; index < kSwitchCount; ++index) {
    tSwitch const tested = getSwitch(index);
    EXPECT_EQ((trace.*tested.isEnabled)(), tested.atTheStart);
  }
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{50});
  EXPECT_EQ(trace.getNestingLevel(), i32{0});
}

TEST_F(TraceSwitches, EachSwitchChangesItselfAlone) {
  for (u32 index = 0; index < kSwitchCount; ++index) (trace.*getSwitch(index).disable)();
  for (u32 changed = 0; changed < kSwitchCount; ++changed) {
    (trace.*getSwitch(changed).enable)();
    for (u32 index = 0; index < kSwitchCount; ++index) {
      EXPECT_EQ((trace.*getSwitch(index).isEnabled)(), u32{index == changed});
    }
    (trace.*getSwitch(changed).disable)();
    EXPECT_EQ((trace.*getSwitch(changed).isEnabled)(), u32{0});
  }
}

TEST_F(TraceSwitches, SwitchingTwiceIsSwitchingOnce) {
  for (u32 index = 0; index < kSwitchCount; ++index) {
    tSwitch const tested = getSwitch(index);
    (trace.*tested.enable)();
    (trace.*tested.enable)();
    EXPECT_EQ((trace.*tested.isEnabled)(), u32{1});
    (trace.*tested.disable)();
    (trace.*tested.disable)();
    EXPECT_EQ((trace.*tested.isEnabled)(), u32{0});
  }
}

TEST_F(TraceSwitches, PrefixWidthIsKeptWithoutBounds) {
  u32 const widths[] = {0, 1, 50, 255, 256, 0x7FFFFFFF, 0xFFFFFFFF};
  for (u32 width : widths) {
    trace.setMinPrefixWidth(width);
    EXPECT_EQ(trace.getMinPrefixWidth(), width);
  }
}

TEST_F(TraceSwitches, StreamWritesToTheDestinationItWasBuiltWith) {
  EXPECT_TRUE(trace.getDestination() == &recorder);
  trace.put("text").endl();
  EXPECT_STREQ(recorder.text(), "text\n");
}

TEST(TraceInstance, EveryNameMeansTheOneStream) {
  char name[] = "any";
  char empty[] = "";
  tTrace* const stream = &tTrace::getInstance();
  EXPECT_TRUE(&tTrace::getInstance(name) == stream);
  EXPECT_TRUE(&tTrace::getInstance(empty) == stream);
  EXPECT_TRUE(&tTrace::getInstance(nullptr) == stream);
}

TEST(TraceInstance, StreamOfTheModuleIsEnabledAndPrintsToTheDebugger) {
  EXPECT_EQ(tTrace::getInstance().isEnabled(), u32{1});
  EXPECT_STREQ(tTrace::getInstance().getDestination()->getDescription(), "VEX print to debugger");
}

TEST(TimeStampCounter, NeverRunsBackwardsInOneThread) {
  u64 last = nOXDIAG100::readTimeStampCounter();
  for (u32 index = 0; index < 1000; ++index) {
    u64 const now = nOXDIAG100::readTimeStampCounter();
    EXPECT_TRUE(now >= last);
    last = now;
  }
}
