// oxdiag-view: its text, its colors, following a file, and what is in its way.

#include "viewProgramTest.h"

namespace {

class OxdiagView : public tViewTest {};

std::string const kTimed =
    lineOf("rack--17--a.cpp--0x1A--5000000000000--5000000000000--100", "the first") +
    lineOf("rack--18--a.cpp--0x1A--5000000016240--16000--60", "open; {") +
    lineOf("rack--19--b.cpp--0x1B--5001500000000--1483760--140", "  failed") +
    "tStatus2 Contents:\n\tError Code = -5\n\t\n" +
    lineOf("rack--18--a.cpp--0x1A--5002000000000--500000--60", "} open");

}  // namespace

TEST_F(OxdiagView, ShowsTimesPlacesAndIndentation) {
  tRun const done = viewText(kTimed);
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output,
            "   0.000000                 0x1A   100  rack a.cpp:17         the first\n"
            "   0.000016    +16.0 µs     0x1A    60  rack a.cpp:18         open; {\n"
            "   1.500000    +1.48 ms     0x1B   140  rack b.cpp:19           failed\n"
            "                                                              tStatus2 Contents:\n"
            "                                                                  Error Code = -5\n"
            "                                                                  \n"
            "   2.000000     +500 µs     0x1A    60  rack a.cpp:18         } open\n");
}

TEST_F(OxdiagView, ShowsOnlyWhatThePrefixHas) {
  EXPECT_EQ(viewText(lineOf("rack", "one") + lineOf("rack", "  two")).output,
            "rack                  one\nrack                    two\n");
}

TEST_F(OxdiagView, ReadsStandardInputAndPipes) {
  std::string const wanted = viewText(kTimed).output;
  for (char const* name : {"", " -"}) {
    std::string const command = "cat " + pathOf("trace") + " | " + kView + " --rate 1GHz" + name;
    EXPECT_EQ(runProgram({"sh", "-c", command}).output, wanted);
  }
}

TEST_F(OxdiagView, ColorsAreForTerminals) {
  EXPECT_FALSE(contains(viewText(kTimed).output, "\x1b"));
  EXPECT_FALSE(contains(viewText(kTimed, {"--color", "never"}).output, "\x1b"));
  std::string const colored = viewText(kTimed, {"--color", "always"}).output;
  EXPECT_TRUE(contains(colored, "\x1b[31mfailed\x1b[0m\n")) << colored;
  EXPECT_TRUE(contains(colored, "\x1b[36mopen; {\x1b[0m\n")) << colored;
}

TEST_F(OxdiagView, ATerminalHasColorsUnlessNoColorIsSet) {
  std::string const command = std::string(kView) + " " + write("trace", kTimed);
  for (bool const isRefused : {false, true}) {
    std::string const setting = isRefused ? "NO_COLOR=1 " : "NO_COLOR= ";
    std::string const shown = showAtTerminal(setting + command);
    EXPECT_EQ(contains(shown, "\x1b[31m"), !isRefused) << shown;
  }
}

TEST_F(OxdiagView, WhatATerminalWouldObeyIsMarked) {
  tRun const done = viewText(lineOf("rack--1--a\x1b.cpp", "a\x1b[2Jb\x07") + "\x1b]0;title\n");
  EXPECT_FALSE(contains(done.output, "\x1b"));
  EXPECT_TRUE(contains(done.output, "a?[2Jb?\n"));
}

// What has numbers from 0x80 is obeyed in UTF-8 by some, and as a byte by those without it.
TEST_F(OxdiagView, ControlsBeyondAsciiAndTurnsOfTheTextAreMarked) {
  std::string const text =
      "a\xC2\x9B"
      "2Jb\x9B"
      "3mc\xE2\x80\xAE"
      "d\xE2\x81\xA6 \xC3\xA4\xC2\xA0\xE2\x82\xAC";
  std::string const shown = "a?2Jb?3mc?d? \xC3\xA4\xC2\xA0\xE2\x82\xAC";
  EXPECT_EQ(viewText(lineOf("rack--1--a.cpp", text)).output,
            "rack a.cpp:1          " + shown + "\n");
  EXPECT_EQ(viewText(text + "\n").output, shown + "\n");
  tRun const summary = viewText(lineOf("ra\xC2\x9B"
                                       "ck--1--a.cpp",
                                       "}"),
                                {"--summary"});
  EXPECT_TRUE(contains(summary.output, "1  ra?ck\n")) << summary.output;
  EXPECT_TRUE(contains(view({pathOf("a\x1b[31m\xC2\x9B")}).errors, "a?[31m?': "));
}

// Else each empty line would take as many bytes as the widest prefix before it.
TEST_F(OxdiagView, AWidePrefixDoesNotPushTheLinesBehindFarOut) {
  std::string const output =
      viewText("[" + std::string(4000, 'x') + "--1--a.cpp--] text\n\n").output;
  EXPECT_LT(output.size(), 4300u);
}

TEST_F(OxdiagView, NonsenseIsShownAsItIs) {
  EXPECT_EQ(viewText("").output, "");
  EXPECT_EQ(viewText("no trace\n").output, "no trace\n");
  EXPECT_EQ(viewText(std::string("\0\xFF\xFE\n", 4)).output, "?\xFF\xFE\n");
  std::string const longLine(size_t{1} << 20, 'x');
  tRun const done = viewText(longLine);
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.output, longLine.substr(0, 65536) + " ... (cut)\n");
}

TEST_F(OxdiagView, AFileThatCannotBeReadGetsOneSentence) {
  for (std::string const& name : {pathOf("absent"), pathOf("")}) {
    tRun const done = view({name});
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_EQ(done.output, "");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(OxdiagView, OutputThatCannotBeWrittenGetsOneSentence) {
  tRun const done = view({write("trace", kTimed)}, "/dev/full");
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

// Else the trace or the page would take the number of the stream.
TEST_F(OxdiagView, AStreamThatIsClosedIsNoFile) {
  std::string const trace = write("trace", "no trace\n");
  std::string const program = std::string(kView) + " --rate 1GHz ";
  tRun const done = runProgram({"sh", "-c", program + trace + " >&-"});
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_EQ(runProgram({"sh", "-c", program + "<&-"}).exitCode, 2);
}

TEST_F(OxdiagView, AReaderThatGoesAwayEndsIt) {
  std::string const command = std::string("yes | ") + kView + " | head -n 1; echo ${PIPESTATUS[1]}";
  EXPECT_EQ(runProgram({"bash", "-c", command}).output, "y\n141\n");
}

TEST_F(OxdiagView, WrongUsageIsDistinct) {
  for (std::vector<std::string> const& arguments : {std::vector<std::string>{"--colour"},
                                                    {"--color", "red"},
                                                    {"--rate", "fast"},
                                                    {"--rate", "0"},
                                                    {"--start", "2026-11-22T20:15:00Z"},
                                                    {"--jsonl", "--start", "now"},
                                                    {"--filter", "colour==1"},
                                                    {"--follow", "--summary"},
                                                    {"--follow", "--dump"},
                                                    {"--jsonl", "--summary"},
                                                    {"--perfetto"},
                                                    {"one", "two"}}) {
    tRun const done = runProgram([&] {
      std::vector<std::string> words = arguments;
      words.insert(words.begin(), kView);
      return words;
    }());
    EXPECT_EQ(done.exitCode, 64) << arguments[0];
    EXPECT_EQ(done.output, "");
    EXPECT_NE(done.errors, "");
  }
}

TEST_F(OxdiagView, HelpTellsOptionsAndExitCodesInLinesOfATerminal) {
  tRun const done = view({"--help"});
  EXPECT_EQ(done.exitCode, 0);
  for (char const* wanted : {"--follow", "--filter", "--summary", "--jsonl", "--perfetto", "--dump",
                             "Exit code", "64"}) {
    EXPECT_TRUE(contains(done.output, wanted)) << wanted;
  }
  size_t longest = 0;
  for (size_t begin = 0; begin < done.output.size();) {
    size_t const end = done.output.find('\n', begin);
    longest = std::max(longest, end - begin);
    begin = end + 1;
  }
  EXPECT_LE(longest, 85u);
}

TEST_F(OxdiagView, TheLastLineOfAFileThatIsReplacedIsShownWithoutItsEnd) {
  write("one", lineOf("rack--1--a.cpp", "one"));
  write("follow.sh",
        "cd " + pathOf("") + "\n" + kView +
            " --follow one >seen & pid=$!\n"
            "await() { for i in $(seq 200); do grep -q \"$1\" seen && return; sleep 0.05; done; }\n"
            "await one\n"
            "printf '[rack--2--a.cpp--------] two' >>one\n"
            "printf '[rack--3--a.cpp--------] three\\n' >new; mv new one\n"
            "await three\n"
            "kill $pid\n");
  runProgram({"bash", pathOf("follow.sh")});
  EXPECT_EQ(readFile("seen"),
            "rack a.cpp:1          one\nrack a.cpp:2          two\nrack a.cpp:3          three\n");
}

TEST_F(OxdiagView, FollowingEndsWhenTheFileCannotBeReadAnyMore) {
  write("one", lineOf("rack--1--a.cpp", "one"));
  std::string const command = "cd " + pathOf("") +
                              "; (sleep 0.3; rm one; mkdir one) & timeout 10 " + kView +
                              " --follow one";
  tRun const done = runProgram({"bash", "-c", command});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(OxdiagView, FollowsAFileThatGrowsIsReplacedAndIsCut) {
  write("one", lineOf("rack--1--a.cpp", "one"));
  write("follow.sh",
        "cd " + pathOf("") + "\n" + kView +
            " --follow one >seen & pid=$!\n"
            "await() { for i in $(seq 200); do grep -q \"$1\" seen && return; sleep 0.05; done; }\n"
            "await one\n"
            "printf '[rack--2--a.cpp--------] tw' >>one; sleep 0.2; printf 'o\\n' >>one\n"
            "await two\n"
            "printf '[rack--3--a.cpp--------] three\\n' >new; mv new one\n"
            "await three\n"
            "printf '[rack--4--a.cpp--] 4\\n' >one\n"
            "await ' 4$'\n"
            "kill $pid\n");
  runProgram({"bash", pathOf("follow.sh")});
  EXPECT_EQ(readFile("seen"),
            "rack a.cpp:1          one\nrack a.cpp:2          two\n"
            "rack a.cpp:3          three\nrack a.cpp:4          4\n");
}
