// What happens within a switch, within a line and within a put.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/prefixedStream.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tTrace;

// Switches its stream while it is opened or closed, as often as `switches` says.
class tSwitchingDestination : public tRecordingDestination {
 public:
  using tRecordingDestination::tRecordingDestination;

  u32 open() override {
    u32 const isOpened = tRecordingDestination::open();
    move(atOpen);
    return isOpened;
  }

  void close() override {
    tRecordingDestination::close();
    move(atClose);
  }

  tTrace* trace = nullptr;
  iTraceDestination* atOpen = nullptr;
  iTraceDestination* atClose = nullptr;
  u32 switches = 1;

 private:
  void move(iTraceDestination* place) {
    if (place == nullptr || switches == 0) return;
    --switches;
    trace->setDestination(*place);
  }
};

struct tThree {
  tSwitchingDestination first{0};
  tSwitchingDestination second{1};
  tSwitchingDestination third{2};
  tPrivateTrace trace{first};

  tThree() {
    first.trace = second.trace = third.trace = &trace;
    second.isOpen = third.isOpen = false;
    trace.disable();
  }

  bool isOnlyOpen(tRecordingDestination const* open) const {
    return first.isOpen == (open == &first) && second.isOpen == (open == &second) &&
           third.isOpen == (open == &third);
  }
};

// A private stream that was switched to the second one, and what is open when it has ended.
struct tEndOfThree {
  tSwitchingDestination first{0};
  tSwitchingDestination second{1};
  tSwitchingDestination third{2};

  void run() {
    tPrivateTrace trace(first);
    first.trace = second.trace = third.trace = &trace;
    third.isOpen = false;
    trace.disable();
    trace.setDestination(second);
  }

  bool isNoneOpen() const { return !first.isOpen && !second.isOpen && !third.isOpen; }
};

// Traces a line from each put, as often as `lines` says.
class tTracingDestination : public tRecordingDestination {
 public:
  using tRecordingDestination::put;
  tTracingDestination& put(char const* text, unsigned int length) override {
    tRecordingDestination::put(text, length);
    if (lines == 0) return *this;
    --lines;
    trace->put("from the put").endl();
    return *this;
  }

  tTrace* trace = nullptr;
  u32 lines = 0;
};

struct tTracingStream {
  tTracingDestination destination;
  tPrivateTrace trace{destination};

  tTracingStream() { destination.trace = &trace; }
};

// Tries to switch its stream from its put.
class tMovingPut : public tRecordingDestination {
 public:
  using tRecordingDestination::put;
  tMovingPut& put(char const* text, unsigned int length) override {
    tRecordingDestination::put(text, length);
    answer = trace->setDestination(*debuggerPrint());
    return *this;
  }

  tTrace* trace = nullptr;
  iTraceDestination* answer = nullptr;
};

// Switches its stream off from its put.
class tLastPut : public tRecordingDestination {
 public:
  using tRecordingDestination::put;
  tLastPut& put(char const* text, unsigned int length) override {
    tRecordingDestination::put(text, length);
    trace->disable();
    return *this;
  }

  tTrace* trace = nullptr;
};

tTestLine hiddenLine() {
  return tPrefixedStream::withVerbosity(1);
}

}  // namespace

TEST(TraceSwitchWithin, OpenThatSwitchesToAThirdAndFailsLeavesOnlyTheFormerOneOpen) {
  tThree three;
  three.second.failingOpens = 1;
  three.second.atOpen = &three.third;
  EXPECT_TRUE(three.trace.setDestination(three.second) == &three.first);
  EXPECT_TRUE(three.trace.getDestination() == &three.first);
  EXPECT_TRUE(three.isOnlyOpen(&three.first));
}

TEST(TraceSwitchWithin, OpenThatSwitchesToAThirdLeavesOnlyThatOneOpen) {
  tThree three;
  three.second.atOpen = &three.third;
  EXPECT_TRUE(three.trace.setDestination(three.second) == &three.first);
  EXPECT_TRUE(three.trace.getDestination() == &three.third);
  EXPECT_TRUE(three.isOnlyOpen(&three.third));
}

TEST(TraceSwitchWithin, OpenThatSwitchesBackAndFailsLeavesTheFormerOneOpen) {
  tThree three;
  three.second.failingOpens = 1;
  three.second.atOpen = &three.first;
  EXPECT_TRUE(three.trace.setDestination(three.second) == &three.first);
  EXPECT_TRUE(three.trace.getDestination() == &three.first);
  EXPECT_TRUE(three.isOnlyOpen(&three.first));
}

TEST(TraceSwitchWithin, CloseThatSwitchesLeavesOnlyTheNextOneOpen) {
  tThree three;
  three.first.atClose = &three.third;
  three.trace.setDestination(three.second);
  EXPECT_TRUE(three.trace.getDestination() == &three.second);
  EXPECT_TRUE(three.isOnlyOpen(&three.second));
}

TEST(TraceSwitchWithin, FormerOneThatAnotherStreamTakesFromItsCloseIsOpen) {
  tThree three;
  tPrivateTrace other(three.third);
  other.disable();
  three.third.isOpen = true;
  three.first.trace = &other;
  three.first.atClose = &three.first;
  three.trace.setDestination(three.second);
  EXPECT_TRUE(other.getDestination() == &three.first);
  EXPECT_TRUE(three.first.isOpen);
  EXPECT_TRUE(three.second.isOpen);
  EXPECT_FALSE(three.third.isOpen);
}

TEST(TraceSwitchWithin, FormerOneThatMovesOnWhenItComesBackIsNotLeftOpen) {
  tThree three;
  three.second.failingOpens = 1;
  three.first.atOpen = &three.third;
  three.trace.setDestination(three.second);
  EXPECT_TRUE(three.isOnlyOpen(&three.third));
  EXPECT_TRUE(three.trace.getDestination() == &three.third);
}

TEST(TraceSwitchWithin, SwitchesThatNeverEndAreEnded) {
  tThree three;
  three.second.switches = three.third.switches = 1000;
  three.second.atOpen = &three.third;
  three.third.atOpen = &three.second;
  three.trace.setDestination(three.second);
  EXPECT_EQ(three.second.switches + three.third.switches, u32{2000 - 4});
  EXPECT_TRUE(three.isOnlyOpen(static_cast<tSwitchingDestination*>(three.trace.getDestination())));
}

TEST(TraceSwitchWithin, EndOfAStreamClosesWhatACloseSwitchesTo) {
  tEndOfThree three;
  three.second.atClose = &three.third;
  three.run();
  EXPECT_STREQ(three.third.events(), "open close ");
  EXPECT_TRUE(three.isNoneOpen());
}

TEST(TraceSwitchWithin, EndOfAStreamClosesWhatOneCloseAfterTheOtherSwitchesTo) {
  tEndOfThree three;
  three.second.atClose = &three.third;
  three.third.atClose = &three.second;
  three.run();
  EXPECT_TRUE(three.isNoneOpen());
}

TEST(TraceSwitchWithin, EndOfAStreamClosesADestinationThatReturnsToItself) {
  tEndOfThree three;
  three.second.atClose = &three.second;
  three.run();
  EXPECT_TRUE(three.isNoneOpen());
}

TEST(TraceSwitchWithin, EndOfAStreamLeavesAloneWhatAnotherOneUses) {
  tEndOfThree three;
  tPrivateTrace other(three.third);
  three.second.atClose = &three.third;
  three.run();
  EXPECT_STREQ(three.third.events(), "");
  EXPECT_FALSE(three.second.isOpen);
}

TEST(TraceSwitchWithin, EndOfAStreamIsReachedThoughEachCloseSwitches) {
  tEndOfThree three;
  three.second.switches = three.third.switches = 1'000'000;
  three.second.atClose = &three.third;
  three.third.atClose = &three.second;
  three.run();
  EXPECT_GT(three.second.switches + three.third.switches, u32{2'000'000 - 2'000});
}

TEST(TraceSwitchWithin, PutThatSwitchesItsOwnDestinationChangesNothing) {
  tMovingPut moving;
  tPrivateTrace trace(moving);
  moving.trace = &trace;
  trace.put("line").endl();
  EXPECT_TRUE(moving.answer == &moving);
  EXPECT_TRUE(trace.getDestination() == &moving);
  EXPECT_STREQ(moving.text(), "line\n");
}

TEST(TraceSwitchWithin, LineFromAPutFollowsTheLineThatWasPut) {
  tTracingStream stream;
  stream.destination.lines = 1;
  stream.trace.put("line").endl();
  EXPECT_EQ(stream.destination.pieceCount(), u32{2});
  EXPECT_STREQ(stream.destination.text(), "line\nfrom the put\n");
}

TEST(TraceSwitchWithin, LineFromAPutOfALongLineComesBetweenItsPieces) {
  tTracingStream stream;
  stream.destination.lines = 1;
  for (int letter = 0; letter < 300; ++letter) stream.trace.put('x');
  stream.trace.endl();
  EXPECT_EQ(stream.destination.pieceCount(), u32{3});
  EXPECT_EQ(stream.destination.pieceLength(0), u32{255});
  EXPECT_TRUE(stream.destination.pieceIs(1, "from the put\n"));
  EXPECT_EQ(stream.destination.pieceLength(2), u32{46});
}

TEST(TraceSwitchWithin, LinesFromPutsWithinEachOtherEndAtTheFourthPut) {
  tTracingStream stream;
  stream.destination.lines = 1000;
  stream.trace.put("line").endl();
  EXPECT_STREQ(stream.destination.text(), "line\nfrom the put\nfrom the put\nfrom the put\n");
  EXPECT_EQ(stream.destination.lines, u32{1000 - 4});
  stream.destination.clear();
  stream.destination.lines = 0;
  stream.trace.put("next").endl();
  EXPECT_STREQ(stream.destination.text(), "next\n");
}

TEST(TraceSwitchWithin, SwitchWithinAHiddenLineIsAnnouncedAndTheLineStaysHidden) {
  tRecordingDestination next(1);
  tPrefixedStream stream;
  hiddenLine().openOn(stream.trace).put("hidden");
  stream.trace.setDestination(next);
  stream.trace.put("hidden too").endl();
  EXPECT_STREQ(stream.record.text(), "Switching trace destination to recorder\n");
  EXPECT_STREQ(next.text(), "");
  stream.trace.put("shown").endl();
  EXPECT_STREQ(next.text(), "shown\n");
}

TEST(TraceSwitchWithin, FailedSwitchWithinALockedHiddenLineKeepsItHidden) {
  tRecordingDestination next(1);
  tPrefixedStream stream;
  next.failingOpens = 1;
  stream.trace.enableMutex();
  hiddenLine().openOn(stream.trace).put("hidden");
  stream.trace.setDestination(next);
  stream.trace.put("hidden too").endl();
  EXPECT_STREQ(stream.record.text(),
               "Switching trace destination to recorder\n"
               "Trace destination couldn't be opened!\n"
               "Trace destination remains unchanged.\n");
}

TEST(TraceSwitchWithin, ConfigurationWithinALockedLineOfTheSameThreadIsDone) {
  tRecordingDestination next(1);
  tPrefixedStream stream;
  stream.trace.configure("--mutex on --prefixwidth 0");
  tTestLine().openOn(stream.trace).put("a");
  stream.trace.setDestination(next);
  stream.trace.configure("--timestamp on --timestamp off");
  stream.trace.put("b").endl();
  EXPECT_STREQ(stream.record.text(), "aSwitching trace destination to recorder\n");
  EXPECT_STREQ(next.text(), "b\n");
}

TEST(TraceSwitchWithin, APutThatSwitchesItsStreamOffEndsADump) {
  u8 const bytes[48] = {};
  tLastPut destination;
  tPrivateTrace trace(destination);
  destination.trace = &trace;
  trace.put(bytes, sizeof(bytes), 1);
  EXPECT_EQ(u32{1}, destination.pieceCount());
}
