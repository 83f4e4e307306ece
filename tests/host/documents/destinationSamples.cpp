// The code in the document on destinations, as it stands there.

#include <gtest/gtest.h>

#include <string>

#include "destinations.samples"
#include "ntos/driveFolder.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"

namespace {

class DestinationSamples : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(tTrace::getInstance().getDestination(), &tVEXTraceDestination::getInstance());
  }

  tCapturedPrint print;
};

void traceOneLine() {
  tTrace::getInstance().put("self test").endl();
}

}  // namespace

TEST_F(DestinationSamples, TheSelfTestIsCaptured) {
  char text[100];
  std::string const expected = "self test\nSwitching trace destination to VEX print to debugger\n";
  i32 const length = captureSelfTest(&traceOneLine, text, sizeof(text));
  EXPECT_EQ(std::string(text, static_cast<size_t>(length)), expected);
  EXPECT_EQ(print.text(), "Switching trace destination to CTF log file\n");
}

TEST_F(DestinationSamples, ASmallBufferKeepsTheBeginning) {
  char text[5];
  EXPECT_EQ(captureSelfTest(&traceOneLine, text, sizeof(text)), 4);
  EXPECT_STREQ(text, "self");
}

TEST_F(DestinationSamples, TheOwnDestinationSeesWhatIsTracedAndLeavesTheStream) {
  {
    tLastCharacter own;
    tTrace::getInstance().setDestination(own);
    tTrace::getInstance().put("abc").endl();
    EXPECT_EQ(own.last, '\n');
  }
  EXPECT_EQ(tTrace::getInstance().getDestination(), &tVEXTraceDestination::getInstance());
}

TEST_F(DestinationSamples, ARecorderAndAFileHaveTheSameText) {
  tDriveFolder const drive;
  std::string const traced = "abc\nSwitching trace destination to VEX print to debugger\n";
  {
    tRecorderAndFile both;
    char name[] = "C:/both.out";
    char* words[] = {name};
    both.configure(1, words);
    tTrace::getInstance().setDestination(both);
    tTrace::getInstance().put("abc").endl();
    tTrace::getInstance().configure("--destination vex");
    EXPECT_EQ(drive.read("both.out"),
              "abc\r\nSwitching trace destination to VEX print to debugger\r\n");
    tRecorderRing const& ring = *both.recorder.getRing();
    std::string const kept(const_cast<tRecorderRing&>(ring).getText(), ring.written);
    EXPECT_EQ(kept, traced);
  }
  {
    tRecorderAndFile both;
    char name[] = "Z:/both.out";
    char* words[] = {name};
    both.configure(1, words);
    EXPECT_EQ(both.open(), 0u);
  }
}

TEST_F(DestinationSamples, WhenNothingOpensTheDebuggerPrintTakesOver) {
  tLastCharacter first;
  tLastCharacter second;
  tTrace::getInstance().setDestination(first);
  first.isBroken = second.isBroken = true;
  print.prints.clear();
  EXPECT_EQ(tTrace::getInstance().setDestination(second), &tVEXTraceDestination::getInstance());
  EXPECT_EQ(print.text(),
            "Trace destination couldn't be opened and previous destination couldn't be restored!\n"
            "The trace destination has been changed to VEX print to debugger by default\n");
}

TEST_F(DestinationSamples, WhoAsksLearnsWhetherAFileOpens) {
  tDriveFolder const drive;
  EXPECT_FALSE(canWriteTo("Z:/x.out"));
  EXPECT_TRUE(canWriteTo("C:/x.out"));
  EXPECT_FALSE(canWriteTo("Z:/x.out"));
  tTrace::getInstance().configure("--destination vex");
}

TEST_F(DestinationSamples, WhoAsksWhileACaptureIsThereLearnsItToo) {
  tDriveFolder const drive;
  char text[512];
  i32 position = 0;
  tCTFTraceDestination capture(text, position, sizeof(text), nullptr);
  tTrace::getInstance().setDestination(capture);
  EXPECT_FALSE(canWriteTo("Z:/x.out"));
  EXPECT_EQ(tTrace::getInstance().getDestination(), &capture);
}
