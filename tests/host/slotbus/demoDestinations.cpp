// Where the demo's trace goes when its options say so: a file, the serial port, a buffer.

#include "demoTest.h"
#include "patterns.h"

namespace {

constexpr char kSummary[] = "devices: 18, failures: 0, lines: 44";
constexpr char kSwitching[] = "Switching trace destination to ";

class SlotbusDemoDestinations : public tDemoTest {
 protected:
  // The lines that any destination gets, as standard output shows them.
  std::string getUsualLines() const { return run(stable({})).output; }

  // What can be compared from run to run: no stack addresses.
  static std::vector<std::string> stable(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--filter", "verbosity>=100 && verbosity!=140"});
    return arguments;
  }
};

// Runs the command that is $1 in the folder that is $0, and reads the terminal that it names.
constexpr char kWatch[] =
    "cd $0\n"
    "eval \"$1\" >output 2>announced &\n"
    "while ! [ -s announced ]; do sleep 0.01; done\n"
    "cat $(sed -n 's/^serial port 1 is //p' announced) >seen\n"
    "wait $!\n";

}  // namespace

TEST_F(SlotbusDemoDestinations, TheFileHasTheLinesWithCarriageReturns) {
  tRun const done =
      run(stable({"--drive-c", pathOf(""), "--trace", "--destination file C:/x.out"}));
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output, std::string(kSwitching) + "File = C:/x.out\n");
  EXPECT_EQ(readFile("x.out"), replaceAll(getUsualLines(), "\n", "\r\n"));
}

TEST_F(SlotbusDemoDestinations, TheFileIsAppendedToOrOverwritten) {
  auto const trace = [this](char const* words) {
    run({"--drive-c", pathOf(""), "--filter", "verbosity>=150", "--trace", words});
    return countLines(readFile("x.out"));
  };
  EXPECT_EQ(trace("--destination file C:/x.out"), 1U);
  EXPECT_EQ(trace("--destination file C:/x.out"), 2U);
  EXPECT_EQ(trace("--destination file C:/x.out append"), 3U);
  EXPECT_EQ(trace("--destination file C:/x.out overwrite"), 1U);
}

TEST_F(SlotbusDemoDestinations, WithoutANameTheFileHasTheDefaultOne) {
  run({"--drive-c", pathOf(""), "--trace", "--destination file"});
  EXPECT_TRUE(contains(readFile("DebugTrace.out"), kSummary));
}

TEST_F(SlotbusDemoDestinations, DriveCIsTheCurrentFolder) {
  std::string const command = std::string("cd ") + pathOf("") + " && exec " + kDemo +
                              " --trace '--destination file C:/here.out'";
  EXPECT_EQ(runProgram({"sh", "-c", command}).exitCode, 0);
  EXPECT_TRUE(contains(readFile("here.out"), kSummary));
}

TEST_F(SlotbusDemoDestinations, AFileThatCannotBeOpenedLeavesTheTraceWhereItWas) {
  for (char const* name : {"C:/absent/x.out", "D:/x.out"}) {
    tRun const done =
        run({"--drive-c", pathOf(""), "--trace", std::string("--destination file ") + name});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_TRUE(contains(done.output,
                         "Trace destination couldn't be opened!\n"
                         "Trace destination remains unchanged.\n"));
    EXPECT_TRUE(contains(done.output, kSummary));
  }
}

TEST_F(SlotbusDemoDestinations, AFileThatHasNoRoomForTheTraceIsReported) {
  std::string const limited = "trap '' XFSZ; ulimit -f 1; exec " + std::string(kDemo) +
                              " --drive-c " + pathOf("") + " --trace '--destination file C:/x.out'";
  tRun const done = runProgram({"sh", "-c", limited});
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_EQ(done.errors, "slotbus_demo: not all of the trace is in its file: the disk is full.\n");
  EXPECT_FALSE(contains(readFile("x.out"), kSummary));
}

TEST_F(SlotbusDemoDestinations, AFullDiskIsReported) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can mount a small disk";
  std::filesystem::create_directory(pathOf("disk"));
  std::string const onSmallDisk =
      "mount -t tmpfs -o size=4k none $0 2>/dev/null || exit 99\nexec " + std::string(kDemo) + " " +
      kFaultyRack + " --drive-c $0 --trace '--destination file C:/x.out'";
  tRun const done = runProgram({"unshare", "-m", "sh", "-c", onSmallDisk, pathOf("disk")});
  if (done.exitCode == 99) GTEST_SKIP() << "this root cannot mount a small disk";
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_EQ(done.errors, "slotbus_demo: not all of the trace is in its file: the disk is full.\n");
}

TEST_F(SlotbusDemoDestinations, AFolderThatIsNotThereGetsOneSentence) {
  tRun const done = run({"--drive-c", pathOf("absent")});
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_EQ(done.output, "");
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(SlotbusDemoDestinations, TheSerialPortMayEndInAFile) {
  tRun const done =
      run(stable({"--serial", pathOf("port"), "--trace", "--destination serial 9600"}));
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output, std::string(kSwitching) + "Serial port with baud rate 9600\n");
  EXPECT_EQ(readFile("port"), replaceAll(getUsualLines(), "\n", "\n\r"));
}

TEST_F(SlotbusDemoDestinations, TheSerialPortEndsInATerminalThatIsNamed) {
  std::string const command = std::string(kDemo) +
                              " --trace '--destination serial'"
                              " --filter 'verbosity>=100 && verbosity!=140'";
  std::string const usual = getUsualLines();
  EXPECT_EQ(runProgram({"sh", "-c", kWatch, pathOf(""), command}).exitCode, 0);
  EXPECT_EQ(readFile("seen"), replaceAll(usual, "\n", "\n\r"));
  EXPECT_EQ(countLines(readFile("announced")), 1U);
}

TEST_F(SlotbusDemoDestinations, ATerminalThatNobodyReadsIsTold) {
  tRun const done = run({"--filter", "verbosity>=150", "--trace", "--destination serial"});
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_EQ(countLines(done.errors), 2U);
  EXPECT_TRUE(contains(done.errors, "not all that was sent to the serial port was taken.\n"));
}

TEST_F(SlotbusDemoDestinations, ASerialFileThatCannotBeOpenedOrWrittenGetsOneSentence) {
  for (char const* name : {"absent/port", "/dev/full"}) {
    tRun const done = run({"--serial", pathOf(name), "--trace", "--destination serial"});
    EXPECT_EQ(done.exitCode, 4);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(SlotbusDemoDestinations, ACaptureIsPrintedAtTheEndBehindItsLength) {
  tRun const done = run(stable({"--capture"}));
  std::string const back = std::string(kSwitching) + "VEX print to debugger\n";
  std::string const usual = getUsualLines();
  size_t const atEnd = usual.rfind('\n', usual.size() - 2) + 1;  // the bus stops, uncaptured
  std::string const captured = usual.substr(0, atEnd) + back;
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output, std::string(kSwitching) + "CTF log file\ncaptured " +
                             std::to_string(captured.size()) + " bytes:\n" + captured +
                             usual.substr(atEnd));
}

TEST_F(SlotbusDemoDestinations, ACaptureTakesTheTraceFromAnyOtherDestination) {
  tRun const done =
      run({"--capture", "--drive-c", pathOf(""), "--trace", "--destination file C:/x.out"});
  EXPECT_EQ(readFile("x.out"), std::string(kSwitching) + "CTF log file\r\n");
  EXPECT_TRUE(contains(done.output, kSummary));
}

TEST_F(SlotbusDemoDestinations, ACaptureOfNothingIsShownToo) {
  tRun const done = run({"--capture", "--trace", "--off"});
  EXPECT_EQ(done.output, "captured 0 bytes:\n");
}

TEST_F(SlotbusDemoDestinations, ACaptureOfManyDetailsIsWhole) {
  std::string rack;
  for (int slot = 1; slot < 100; ++slot) {
    std::string const number = std::to_string(slot);
    rack += number + " | " + number + " | A\\1, A\\2, A\\3 | " + std::string(120, 'd') + "\n";
  }
  for (int line = 0; line < 60; ++line) rack += "| wrong\n";
  tRun const done = run({write("full.txt", rack), "--filter", "verbosity>=60", "--capture"});
  EXPECT_FALSE(contains(done.output, "filled the buffer"));
  EXPECT_TRUE(contains(done.output, "devices: 99, failures: 60, lines: 159\n"));
}
