// The colors of the demo's trace.

#include "demoTest.h"
#include "patterns.h"

namespace {

class SlotbusColors : public tDemoTest {
 protected:
  tRun color(std::string const& when, std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.end(), {"--color", when});
    return run(std::move(arguments));
  }

  // With a terminal for standard output.
  std::string runAtTerminal(std::string const& setting, std::string const& arguments = "") const {
    return showAtTerminal(setting + " " + kDemo + " " + arguments);
  }
};

std::vector<std::string> const kDetails = {kFaultyRack, "--filter", "verbosity>=60"};

constexpr char kEscape = '\x1b';

bool hasColors(std::string const& text) {
  return text.find(kEscape) != std::string::npos;
}

// Without what differs from run to run.
std::string withoutColors(std::string const& text) {
  return replaceAll(replaceAll(text, "\x1b\\[[0-9;]*m", ""), "0x[0-9A-F]+", "0x");
}

}  // namespace

TEST_F(SlotbusColors, NothingElseOfTheTraceChanges) {
  tRun const plain = color("never", kDetails);
  tRun const colored = color("always", kDetails);
  EXPECT_FALSE(hasColors(plain.output));
  EXPECT_TRUE(hasColors(colored.output));
  EXPECT_EQ(withoutColors(colored.output), withoutColors(plain.output));
  EXPECT_EQ(colored.exitCode, plain.exitCode);
}

TEST_F(SlotbusColors, EveryShapeOfThePrefixKeepsItsText) {
  for (char const* words :
       {"--prefixwidth 0", "--prefixwidth 1", "--prefixwidth 400 --truncation off",
        "--compname off --linenumber off --filename off", "--indent off",
        "--filepath --compver --verbosity"}) {
    EXPECT_EQ(withoutColors(color("always", {kFaultyRack, "--trace", words}).output),
              withoutColors(color("never", {kFaultyRack, "--trace", words}).output))
        << words;
  }
}

TEST_F(SlotbusColors, PrefixesBlocksAndErrorsHaveTheirOwn) {
  std::string const output = color("always", kDetails).output;
  EXPECT_TRUE(output.starts_with("\x1b[90m[slotbus--")) << output.substr(0, 80);
  EXPECT_TRUE(contains(output, "\x1b[36mstart; {\x1b[0m\n"));
  EXPECT_TRUE(contains(output, "\x1b[31m\tError Code = -61007\x1b[0m\n"));
  EXPECT_TRUE(contains(output, "\x1b[31m} tStatus2 code=-61007; readLine\x1b[0m\n"));
  EXPECT_TRUE(contains(output, "\x1b[0mdevices: 27, failures: 7, lines: 62\n")) << output;
}

TEST_F(SlotbusColors, AFileGetsNoneByDefault) {
  EXPECT_FALSE(hasColors(run({}).output));
  EXPECT_FALSE(hasColors(color("auto").output));
}

TEST_F(SlotbusColors, ATerminalGetsSomeUnlessNoColorIsSet) {
  EXPECT_TRUE(hasColors(runAtTerminal("NO_COLOR=")));
  EXPECT_FALSE(hasColors(runAtTerminal("NO_COLOR=1")));
  EXPECT_TRUE(hasColors(runAtTerminal("NO_COLOR=1", "--color always")));
  EXPECT_FALSE(hasColors(runAtTerminal("NO_COLOR=", "--color never")));
}

TEST_F(SlotbusColors, ACapturedTraceAndALineOfSwitchingHaveThemToo) {
  EXPECT_TRUE(contains(color("always", {"--capture"}).output, "\x1b[90m[slotbus--"));
  EXPECT_TRUE(contains(color("always", {"--trace", "--destination recorder 64 vex"}).output,
                       "\x1b[90m[slotbus--"));
}

TEST_F(SlotbusColors, ATraceInAFileHasNone) {
  color("always", {"--drive-c", pathOf(""), "--trace", "--destination file C:/rack.out"});
  EXPECT_TRUE(contains(readFile("rack.out"), "[slotbus--"));
  EXPECT_FALSE(hasColors(readFile("rack.out")));
}

TEST_F(SlotbusColors, OutputThatCannotBeWrittenGetsOneSentence) {
  tRun const done = run({"--color", "always"}, "/dev/full");
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(SlotbusColors, AnotherWordIsWrongUsage) {
  EXPECT_EQ(color("sometimes").exitCode, 64);
}
