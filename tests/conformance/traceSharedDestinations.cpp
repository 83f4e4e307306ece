// Two streams with one destination: the first that takes it opens it, the last that leaves closes
// it.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/fileDestination.h"
#include "support/recordingBus.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tTrace;

// Two streams without a word about their switches, and a destination that both may take.
struct tTwoStreams {
  tRecordingDestination shared{0};
  tRecordingDestination other{1};
  tPrivateTrace first{*debuggerPrint()};
  tPrivateTrace second{*debuggerPrint()};

  tTwoStreams() {
    first.disable();
    second.disable();
  }

  void share() {
    first.setDestination(shared);
    second.setDestination(shared);
    shared.clear();
  }

  static void putLine(tTrace& trace, char const* text) {
    trace.enable();
    trace.put(text).endl();
    trace.disable();
  }
};

// Goes as a component's destination does.
class tGoingDestination : public tRecordingDestination {
 public:
  ~tGoingDestination() override { leaveStream(); }
};

}  // namespace

TEST(TraceSharedDestination, IsOpenedByTheFirstStreamThatTakesIt) {
  tTwoStreams two;
  two.first.setDestination(two.shared);
  EXPECT_STREQ(two.shared.events(), "open ");
  two.second.setDestination(two.shared);
  EXPECT_STREQ(two.shared.events(), "open ");
}

TEST(TraceSharedDestination, IsClosedByTheLastStreamThatLeaves) {
  tTwoStreams two;
  two.share();
  two.first.setDestination(*debuggerPrint());
  EXPECT_STREQ(two.shared.events(), "measure inquire ");
  EXPECT_TRUE(two.shared.isOpen);
  two.second.setDestination(*debuggerPrint());
  EXPECT_STREQ(two.shared.events(), "measure inquire measure inquire close ");
}

TEST(TraceSharedDestination, TakesTheLinesOfBoth) {
  tTwoStreams two;
  two.share();
  two.putLine(two.first, "one");
  two.putLine(two.second, "two");
  EXPECT_STREQ(two.shared.text(), "one\ntwo\n");
}

TEST(TraceSharedDestination, StaysOpenForTheOtherWhenAStreamEnds) {
  tTwoStreams two;
  {
    tPrivateTrace third(*debuggerPrint());
    third.disable();
    third.setDestination(two.shared);
    two.first.setDestination(two.shared);
  }
  EXPECT_STREQ(two.shared.events(), "open ");
  two.putLine(two.first, "still");
  EXPECT_STREQ(two.shared.text(), "still\n");
}

TEST(TraceSharedDestination, IsClosedByTheLastStreamThatEnds) {
  tRecordingDestination taken;
  {
    tPrivateTrace trace(*debuggerPrint());
    trace.disable();
    trace.setDestination(taken);
  }
  EXPECT_STREQ(taken.events(), "open close ");
}

TEST(TraceSharedDestination, ThatAStreamWasBuiltOnIsNotClosedWhenItEnds) {
  tRecordingDestination given;
  { tPrivateTrace const trace(given); }
  EXPECT_STREQ(given.events(), "");
}

TEST(TraceSharedDestination, TakenAgainByAStreamThatHasItIsClosedAndOpenedForBoth) {
  tTwoStreams two;
  two.share();
  two.first.setDestination(two.shared);
  EXPECT_STREQ(two.shared.events(), "measure inquire close open ");
  two.putLine(two.second, "both");
  EXPECT_STREQ(two.shared.text(), "both\n");
}

TEST(TraceSharedDestination, ThatDoesNotOpenAgainComesBackForBoth) {
  tTwoStreams two;
  two.share();
  two.shared.failingOpens = 1;
  two.first.setDestination(two.shared);
  EXPECT_STREQ(two.shared.events(),
               "measure inquire close open-fails configure(--destination|recording) open ");
  EXPECT_TRUE(two.first.getDestination() == &two.shared);
  EXPECT_TRUE(two.second.getDestination() == &two.shared);
}

TEST(TraceSharedDestination, ThatCannotBeOpenedAnyMoreSendsBothToTheDebugger) {
  tTwoStreams two;
  two.share();
  two.shared.failingOpens = 2;
  EXPECT_TRUE(two.first.setDestination(two.shared) == debuggerPrint());
  EXPECT_TRUE(two.first.getDestination() == debuggerPrint());
  EXPECT_TRUE(two.second.getDestination() == debuggerPrint());
}

TEST(TraceSharedDestination, OfTheFormerStaysOpenWhenTheNextOneDoesNotOpen) {
  tTwoStreams two;
  two.share();
  two.other.failingOpens = 1;
  EXPECT_TRUE(two.first.setDestination(two.other) == &two.shared);
  EXPECT_STREQ(two.shared.events(), "measure inquire ");
  EXPECT_TRUE(two.first.getDestination() == &two.shared);
}

TEST(TraceSharedDestination, ThatGoesIsTakenOffEveryStream) {
  tTwoStreams two;
  tTrace& ofModule = tTrace::getInstance();
  ofModule.disable();
  {
    tGoingDestination going;
    two.first.setDestination(going);
    two.second.setDestination(going);
    ofModule.setDestination(going);
    EXPECT_STREQ(going.events(), "open ");
  }
  ofModule.enable();
  EXPECT_TRUE(two.first.getDestination() == debuggerPrint());
  EXPECT_TRUE(two.second.getDestination() == debuggerPrint());
  EXPECT_TRUE(ofModule.getDestination() == debuggerPrint());
  EXPECT_STREQ(recordStorage[0].events,
               "open measure inquire measure inquire measure inquire close ");
}

TEST(TraceSharedDestination, ThatGoesReceivesTheLineOfEveryStreamThatIsOn) {
  tTwoStreams two;
  {
    tGoingDestination going;
    two.first.setDestination(going);
    two.second.setDestination(going);
    two.first.enable();
    two.second.enable();
  }
  EXPECT_STREQ(recordStorage[0].text,
               "Switching trace destination to VEX print to debugger\n"
               "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceSharedDestination, SerialPortOfTwoStreamsGetsItsNewRateForBoth) {
  tRecordedPort port;
  tTwoStreams two;
  two.first.configure("--destination serial 9600");
  two.second.configure("--destination serial");
  EXPECT_STREQ(port.takeEvents(), "new(0) open(0,0,0) w3FB=80 w3F8=C w3FB=3 ");
  two.second.configure("--destination serial 4800");
  EXPECT_STREQ(port.takeEvents(), "release(7) delete new(0) open(0,0,0) w3FB=80 w3F8=18 w3FB=3 ");
  two.first.configure("--destination vex");
  EXPECT_STREQ(port.takeEvents(), "");
  two.second.configure("--destination serial 115200 --destination vex");
  EXPECT_STREQ(port.takeEvents(), "release(7) delete ");
}

TEST(TraceSharedDestination, FileThatASecondStreamCannotMoveStaysWhereItIs) {
  tDriveFile file(kTestPath);
  file.write("");
  tTwoStreams two;
  two.first.configure("--destination file C:/oxdiag-test.out");
  two.second.configure("--destination file C:/no-such-folder-here/x.out");
  EXPECT_TRUE(two.second.getDestination() == debuggerPrint());
  two.putLine(two.first, "still here");
  two.first.configure("--destination vex");
  EXPECT_TRUE(file.read());
  EXPECT_STREQ(file.getText(), "still here\r\n");
}

// Sends another stream to a destination from its put, once.
class tPassingDestination : public tRecordingDestination {
 public:
  using tRecordingDestination::put;
  using tRecordingDestination::tRecordingDestination;
  tPassingDestination& put(char const*, unsigned int) override {
    if (other != nullptr)
      __atomic_exchange_n(&other, nullptr, __ATOMIC_RELAXED)->setDestination(*to);
    return *this;
  }

  tTrace* other = nullptr;
  iTraceDestination* to = nullptr;
};

TEST(TraceSharedDestination, IsOpenedOnceThoughAPutSendsAnotherStreamThereMeanwhile) {
  tTwoStreams two;
  tPassingDestination passing{1};
  two.first.setDestination(passing);
  passing.other = &two.second;
  passing.to = &two.shared;
  two.first.enable();
  two.first.setDestination(two.shared);
  EXPECT_STREQ(two.shared.events(), "open ");
  two.first.setDestination(*debuggerPrint());
}
