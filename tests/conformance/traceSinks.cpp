// The destinations that options can name, chosen together and in turn.

#include "conformance/harness.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/fileDestination.h"
#include "support/recordingBus.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tFileTraceDestination;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

// A stream on a recorder, a serial port that is recorded too, and an empty file. At the end the
// shared instances are closed, the serial port at its first rate, the file to be appended to.
class tSinks {
 public:
  tSinks() { file.write(""); }

  ~tSinks() {
    trace.disable();
    trace.configure("--destination serial 115200 --destination file C:/oxdiag-test.out");
    if (serial() != nullptr) serial()->open();
    trace.configure("--destination vex");
    if (serial() != nullptr) serial()->close();
  }

  static tSerialTraceDestination* serial() { return tSerialTraceDestination::getInstance(); }
  static tFileTraceDestination* onDisk() { return tFileTraceDestination::getInstance(); }

  char const* readFile() { return file.read() ? file.getText() : "no file"; }

  tRecordedPort port;
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};
  tDriveFile file{kTestPath};
};

}  // namespace

TEST(TraceSinks, OptionNamesTheInstancesOfTheLibrary) {
  tSinks sinks;
  sinks.trace.configure("--destination serial");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.serial());
  sinks.trace.configure("--destination file C:/oxdiag-test.out");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.onDisk());
  sinks.trace.configure("--destination vex");
  EXPECT_TRUE(sinks.trace.getDestination() == &tVEXTraceDestination::getInstance());
}

TEST(TraceSinks, WordsBehindTheNameAreTheDestinationsAndWhatFollowsIsTheStreams) {
  tSinks sinks;
  sinks.trace.configure("--destination file overwrite C:/oxdiag-test.out --compname off");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.onDisk());
  EXPECT_EQ(sinks.trace.componentNameIsEnabled(), u32{0});
  EXPECT_STREQ(sinks.onDisk()->getDescription(), "File = C:/oxdiag-test.out");
}

TEST(TraceSinks, OfSeveralTheLastIsInstalledButEachGetsItsWords) {
  tSinks sinks;
  sinks.trace.configure(
      "--destination serial 9600 --destination file C:/oxdiag-test.out --destination serial 2400 "
      "--destination vex");
  EXPECT_TRUE(sinks.trace.getDestination() == &tVEXTraceDestination::getInstance());
  EXPECT_STREQ(sinks.serial()->getDescription(), "Serial port with baud rate 2400");
  EXPECT_STREQ(sinks.onDisk()->getDescription(), "File = C:/oxdiag-test.out");
  EXPECT_STREQ(sinks.port.takeEvents(), "");
}

TEST(TraceSinks, UnknownNameKeepsItsWordsFromTheOneChosenBefore) {
  tSinks sinks;
  sinks.trace.configure("--destination serial 9600 --destination bogus 2400");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.serial());
  EXPECT_STREQ(sinks.serial()->getDescription(), "Serial port with baud rate 9600");
}

TEST(TraceSinks, NameAloneLeavesAnOverwriteThatIsPendingInForce) {
  tSinks sinks;
  sinks.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  sinks.trace.put("first").endl();
  sinks.trace.configure("--destination vex --destination file");
  sinks.trace.put("second").endl();
  EXPECT_STREQ(sinks.readFile(), "second\r\n");
}

TEST(TraceSinks, AnyWordOfItsOwnMakesTheFileAppendAgain) {
  tSinks sinks;
  sinks.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  sinks.trace.put("first").endl();
  sinks.trace.disable();
  sinks.trace.configure("--on --destination vex --destination file C:/oxdiag-test.out");
  sinks.trace.put("second").endl();
  EXPECT_STREQ(sinks.readFile(),
               "first\r\nSwitching trace destination to File = C:/oxdiag-test.out\r\n"
               "second\r\n");
}

TEST(TraceSinks, ChosenAgainWhileCurrentIsClosedAndOpenedAnew) {
  tSinks sinks;
  sinks.trace.configure("--destination serial 9600");
  sinks.port.takeEvents();
  sinks.trace.disable();
  sinks.trace.configure("--destination serial 4800");
  EXPECT_STREQ(sinks.port.takeEvents(),
               "release(7) delete new(0) open(0,0,0) w3FB=80 w3F8=18 w3FB=3 ");
}

TEST(TraceSinks, FileThatDoesNotOpenLeavesTheSerialPortAtItsRate) {
  tSinks sinks;
  sinks.trace.configure("--prefixwidth 0 --destination serial 9600");
  sinks.trace.disable();
  sinks.trace.configure("--destination file C:/no-such-folder-here/x.out");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.serial());
  EXPECT_TRUE(tTraceState(sinks.trace).beginsWith("--off --destination serial 9600 --compname"));
}

TEST(TraceSinks, SerialPortThatDoesNotOpenLeavesTheFileWithTwoLines) {
  tSinks sinks;
  sinks.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  sinks.port->isBusMissing = true;
  sinks.trace.configure("--destination serial 9600");
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.onDisk());
  EXPECT_STREQ(sinks.readFile(),
               "Switching trace destination to Serial port with baud rate 9600\r\n"
               "Trace destination couldn't be opened!\r\n"
               "Trace destination remains unchanged.\r\n");
}

TEST(TraceSinks, InquiredTextNamesTheDestinationAndItsSettings) {
  tSinks sinks;
  sinks.trace.configure("--destination serial 9600");
  EXPECT_TRUE(tTraceState(sinks.trace).beginsWith("--on --destination serial 9600 --compname on"));
  sinks.trace.configure("--destination file C:/oxdiag-test.out");
  EXPECT_TRUE(tTraceState(sinks.trace)
                  .beginsWith("--on --destination file C:/oxdiag-test.out --compname on"));
}

TEST(TraceSinks, PopRestoresEitherDestinationWithItsSettings) {
  tSinks sinks;
  sinks.trace.configure("--destination serial 4800");
  sinks.trace.pushConfiguration();
  sinks.trace.configure("--destination file C:/oxdiag-test.out");
  sinks.trace.pushConfiguration();
  sinks.trace.configure("--destination serial 1200 --destination vex");
  sinks.trace.popConfiguration();
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.onDisk());
  sinks.trace.popConfiguration();
  EXPECT_TRUE(sinks.trace.getDestination() == sinks.serial());
  EXPECT_TRUE(tTraceState(sinks.trace).beginsWith("--on --destination serial 4800 "));
}

TEST(TraceSinks, PopAppendsToAFileThatWasOverwrittenAtThePush) {
  tSinks sinks;
  sinks.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  sinks.trace.put("kept").endl();
  sinks.trace.pushConfiguration();
  sinks.trace.disable();
  sinks.trace.popConfiguration();
  EXPECT_STREQ(sinks.readFile(),
               "kept\r\nSwitching trace destination to File = C:/oxdiag-test.out\r\n");
}
