// A trace stream that is sent to a file by its options.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/fileDestination.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tFileTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

iTraceDestination* instance() {
  return tFileTraceDestination::getInstance();
}

// A stream on a recorder; the file is closed at the end.
struct tStream {
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};
  tDriveFile file{kTestPath};

  ~tStream() { instance()->close(); }

  bool fileHolds(char const* text) {
    return file.read() && __builtin_strcmp(file.getText(), text) == 0;
  }
};

}  // namespace

TEST(FileDestinationOption, LinesGoIntoTheFile) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  EXPECT_TRUE(stream.trace.getDestination() == instance());
  stream.trace.put("slot ").put(7, 10).endl();
  stream.trace.put("slot ").put(8, 10).endl();
  EXPECT_TRUE(stream.fileHolds("slot 7\r\nslot 8\r\n"));
}

TEST(FileDestinationOption, OldDestinationIsToldTheFile) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  EXPECT_STREQ(stream.recorder.text(),
               "Switching trace destination to File = C:/oxdiag-test.out\n");
}

TEST(FileDestinationOption, LeavingTheFileIsItsLastLineAndClosesIt) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  stream.trace.configure("--destination vex");
  EXPECT_TRUE(stream.fileHolds("Switching trace destination to VEX print to debugger\r\n"));
  EXPECT_EQ(stream.file.openAlone(), STATUS_SUCCESS);
}

TEST(FileDestinationOption, SettingsOfTheFileStandInThoseOfTheStream) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  tTraceState const state(stream.trace);
  EXPECT_TRUE(state.has(" --destination file C:/oxdiag-test.out"));
  EXPECT_FALSE(state.has(" overwrite"));
}

TEST(FileDestinationOption, NameAloneAppendsAfterAnEarlierOverwrite) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  stream.trace.put("kept").endl();
  stream.trace.configure("--destination file C:/oxdiag-test.out");
  EXPECT_TRUE(
      stream.fileHolds("kept\r\nSwitching trace destination to File = C:/oxdiag-test.out\r\n"));
}

TEST(FileDestinationOption, NoWordsLeaveAnEarlierOverwriteStanding) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  stream.trace.put("dropped").endl();
  stream.trace.configure("--destination file");
  EXPECT_TRUE(stream.fileHolds(""));
}

TEST(FileDestinationOption, PathThatIsNotThereLeavesTheStreamWhereItWas) {
  tStream stream;
  stream.trace.configure("--destination file C:\\oxdiag-missing\\test.out");
  EXPECT_TRUE(stream.trace.getDestination() == &stream.recorder);
  EXPECT_STREQ(stream.recorder.text(),
               "Switching trace destination to File = C:\\oxdiag-missing\\test.out\n"
               "Trace destination couldn't be opened!\n"
               "Trace destination remains unchanged.\n");
  EXPECT_STREQ(tFileTraceDestination::getInstance()->getDescription(), "File = C:/DebugTrace.out");
}

TEST(FileDestinationOption, FileThatDoesNotOpenGivesWayToTheFileBefore) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  stream.trace.put("first").endl();
  stream.trace.configure("--destination file C:\\oxdiag-missing\\test.out overwrite");
  EXPECT_TRUE(stream.trace.getDestination() == instance());
  EXPECT_TRUE(
      stream.fileHolds("first\r\n"
                       "Switching trace destination to File = C:\\oxdiag-missing\\test.out\r\n"
                       "Trace destination couldn't be opened!\r\n"
                       "Trace destination remains unchanged.\r\n"));
}

TEST(FileDestinationOption, PoppedConfigurationContinuesTheFile) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  stream.trace.pushConfiguration();
  stream.trace.configure("--destination vex");
  stream.trace.popConfiguration();
  EXPECT_TRUE(stream.trace.getDestination() == instance());
  stream.trace.put("again").endl();
  EXPECT_TRUE(
      stream.fileHolds("Switching trace destination to VEX print to debugger\r\nagain\r\n"));
}

TEST(FileDestinationOption, LongLineArrivesWhole) {
  tStream stream;
  stream.trace.configure("--destination file C:/oxdiag-test.out overwrite");
  for (int count = 0; count < 60; ++count) stream.trace.put("0123456789");
  stream.trace.endl();
  ASSERT_TRUE(stream.file.read());
  EXPECT_EQ(stream.file.getLength(), u32{602});
}
