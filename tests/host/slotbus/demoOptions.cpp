// Option words as a user of the demo types them: what passes, and what is pointed out.

#include "demoTest.h"

namespace {

using tWords = std::vector<std::string>;

class SlotbusDemoOptions : public tDemoTest {
 protected:
  tRun check(std::string const& option, std::string const& words) const {
    return run({"--check-only", option, words});
  }

  void expectUnderstood(std::string const& option, tWords const& texts) const {
    for (std::string const& text : texts) {
      tRun const done = check(option, text);
      EXPECT_EQ(done.exitCode, 0) << text << "\n" << done.errors;
      EXPECT_EQ(done.errors, "") << text;
    }
  }

  // Each text with a part of the sentence that points out what is wrong.
  void expectRefused(std::string const& option,
                     std::vector<std::pair<std::string, std::string>> const& texts) const {
    for (auto const& [text, sentencePart] : texts) {
      tRun const done = check(option, text);
      EXPECT_EQ(done.exitCode, 64) << text;
      EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
      EXPECT_TRUE(contains(done.errors, "slotbus_demo: " + option + ": ")) << done.errors;
      EXPECT_TRUE(contains(done.errors, sentencePart)) << done.errors << sentencePart;
    }
  }

  tWords const traceSwitches = {"--compname",  "--compver",  "--linenumber", "--filename",
                                "--filepath",  "--threadid", "--timestamp",  "--timedelta",
                                "--verbosity", "--indent",   "--truncation", "--mutex"};
  tWords const assertSwitches = {"--terminate",      "--break",           "--preconditions",
                                 "--postconditions", "--classinvariants", "--loopinvariants",
                                 "--checks",         "--exceptions"};
};

std::string join(tWords const& words, char const* behind) {
  std::string text;
  for (std::string const& word : words) text += word + behind + " ";
  return text;
}

}  // namespace

TEST_F(SlotbusDemoOptions, EverySwitchTakesOnOffAndNothing) {
  for (char const* value : {"", " on", " off"}) {
    expectUnderstood("--trace", {join(traceSwitches, value)});
    expectUnderstood("--assert", {join(assertSwitches, value)});
  }
}

TEST_F(SlotbusDemoOptions, EveryOtherTraceOptionIsUnderstood) {
  expectUnderstood(
      "--trace", {"--on", "--off", "--prefixwidth 30", "--prefixwidth 0x1F", "--prefixwidth 2#101",
                  "--filter", "--filter verbosity>=60", "--filter \"verbosity >= 60 && line < 9\"",
                  "--filter \"\"", "--calibrate", "--calibrate 1 2 3", "--mutex-kernel-token 5:0",
                  "--mutex-kernel-token 5:0 0x7:0"});
}

TEST_F(SlotbusDemoOptions, EveryDestinationIsUnderstood) {
  expectUnderstood("--trace", {"--destination", "--destination vex", "--destination serial",
                               "--destination file", "--destination file append",
                               "--destination file C:/a.out overwrite --off",
                               "--destination file \"d:\\my logs\\a.out\""});
}

TEST_F(SlotbusDemoOptions, EveryBaudRateIsUnderstood) {
  for (char const* rate :
       {"115200", "57600", "38400", "19200", "9600", "4800", "2400", "2000", "1800", "1200"}) {
    expectUnderstood("--trace", {std::string("--destination serial ") + rate});
  }
}

TEST_F(SlotbusDemoOptions, EveryFieldSwitchTakesATerm) {
  for (char const* field :
       {"--compname", "--compver", "--linenumber", "--filename", "--threadid", "--verbosity"}) {
    for (char const* term : {" ==5", " !=5", " >5", " <5", " >=5", " <=5", " \">= 5\""}) {
      expectUnderstood("--trace", {std::string(field) + term});
    }
  }
}

TEST_F(SlotbusDemoOptions, CategoriesOldAndNewAreUnderstood) {
  expectUnderstood("--assert", {"--category default --break off", "--category mine",
                                "--category \"two words\" --checks off --category warning"});
}

TEST_F(SlotbusDemoOptions, NoWordsAtAllAreFine) {
  for (char const* text : {"", " ", " \t\n\v\f\r "}) {
    expectUnderstood("--trace", {text});
    expectUnderstood("--assert", {text});
  }
}

TEST_F(SlotbusDemoOptions, WhatIsNoTraceOptionIsPointedOutWithTheNearestWord) {
  expectRefused("--trace", {{"--timestmp on", "'--timestmp' is no option, perhaps --timestamp."},
                            {"timestamp", "perhaps --timestamp."},
                            {"--Timestamp", "perhaps --timestamp."},
                            {"--off --time", "'--time' is no option, perhaps --timestamp."},
                            {"-off", "'-off' is no option, perhaps --off."},
                            {"--", "'--' is no option."},
                            {"\"\"", "'' is no option."},
                            {"--frobnicate", "'--frobnicate' is no option."}});
}

TEST_F(SlotbusDemoOptions, AnOptionOfTheOtherKindIsSentThere) {
  expectRefused("--trace", {{"--break off", "'--break' belongs to assert, not to trace."}});
  expectRefused("--assert", {{"--timestamp", "'--timestamp' belongs to trace, not to assert."}});
}

TEST_F(SlotbusDemoOptions, AValueThatIsNeitherOnNorOffIsPointedOut) {
  expectRefused("--trace", {{"--timestamp offf",
                             "behind --timestamp is neither on nor off, "
                             "perhaps off."},
                            {"--mutex ==5", "'==5' behind --mutex is neither on nor off."},
                            {"--compname rack", "'rack' behind --compname is neither"},
                            {"--timestamp indent", "perhaps --indent."}});
  expectRefused("--assert", {{"--break ON", "perhaps on."}, {"--checks 0", "neither on nor off."}});
}

TEST_F(SlotbusDemoOptions, ATermThatFiltersNothingIsPointedOut) {
  expectRefused("--trace", {{"--linenumber ==x", "the term '==x' needs a number."},
                            {"--verbosity =5", "the term '=5' has none of the operators"},
                            {"--compname ==", "the term '==' has no value."}});
}

TEST_F(SlotbusDemoOptions, AValueTooManyIsPointedOut) {
  expectRefused("--trace", {{"--on yes", "'yes' cannot follow --on."},
                            {"--prefixwidth 3 4", "'4' cannot follow --prefixwidth."},
                            {"--destination vex 9600", "'9600' cannot follow the debugger print."},
                            {"--calibrate 1 2 3 4", "'4' cannot follow --calibrate."}});
  expectRefused("--assert", {{"--category a b", "'b' cannot follow the name of a category."},
                             {"--break off off", "'off' is no option."}});
}

TEST_F(SlotbusDemoOptions, AMissingValueIsPointedOut) {
  expectRefused("--trace", {{"--prefixwidth", "--prefixwidth needs a number."},
                            {"--prefixwidth --off", "--prefixwidth needs a number."},
                            {"--mutex-kernel-token", "needs a token such as 5:0."}});
  expectRefused("--assert", {{"--category", "--category needs the name of a category."}});
}

TEST_F(SlotbusDemoOptions, AnOptionThatIsSwallowedIsPointedOut) {
  expectRefused("--trace", {{"--destination --compname off",
                             "'--compname' is swallowed by the "
                             "nameless --destination."},
                            {"--mutex-kernel-token 5:0 --off", "'--off' is no token such as 5:0"}});
  expectRefused("--assert", {{"--category --break off",
                              "'--break' is swallowed by the nameless "
                              "--category."}});
}

TEST_F(SlotbusDemoOptions, AWordThatIsNoNumberIsPointedOut) {
  expectRefused("--trace", {{"--prefixwidth 12ab", "'12ab' is no number for --prefixwidth."},
                            {"--prefixwidth -1", "'-1' is no number"},
                            {"--prefixwidth 0x", "'0x' is no number"},
                            {"--prefixwidth 2#", "'2#' is no number"},
                            {"--prefixwidth #5", "'#5' is no number"},
                            {"--mutex-kernel-token 7", "'7' is no token"},
                            {"--mutex-kernel-token :0", "':0' is no token"}});
}

TEST_F(SlotbusDemoOptions, ANumberThatWouldWrapIsPointedOut) {
  expectUnderstood(
      "--trace",
      {"--linenumber ==4294967295", "--verbosity <=0xFFFFFFFF", "--filter line<16#42949672",
       "--mutex-kernel-token 4294967295:0", "--filter thread==32#0000000000000000001",
       "--linenumber ==0000000000000000000000042", "--calibrate 18446744073709551615 0 0"});
  std::string const wraps = " has a number of more than 32 bits.";
  expectRefused(
      "--trace",
      {{"--linenumber ==4294967296", "the term '==4294967296'" + wraps},
       {"--threadid >0x100000000", "the term '>0x100000000'" + wraps},
       {"--verbosity <99999999999999999999999", "the term '<99999999999999999999999'" + wraps},
       {"--filter verb>=4294967396", "in the filter, 'verb>=4294967396'" + wraps},
       {"--filter \"verb>=100 && line<2#" + std::string(33, '1') + "\"", "'" + wraps},
       {"--filter \"thread==4294967298#1\"", "in the filter, 'thread==4294967298#1'" + wraps},
       {"--mutex-kernel-token 4294967296:0", "'4294967296:0'" + wraps},
       {"--mutex-kernel-token 1:4294967296", "'1:4294967296'" + wraps},
       {"--prefixwidth 4294967346", "'4294967346' is above 4096, the widest prefix."}});
}

TEST_F(SlotbusDemoOptions, AMeasuredNumberHas64BitsAtMost) {
  std::string const largest = "18446744073709551615";
  expectUnderstood("--trace", {"--calibrate " + largest + " 0xFFFFFFFFFFFFFFFF 0",
                               "--calibrate 0 0 000000000" + largest});
  std::string const wraps = " has a number of more than 64 bits.";
  expectRefused("--trace",
                {{"--calibrate 18446744073709551616 0 0", "'18446744073709551616'" + wraps},
                 {"--calibrate 0 0x10000000000000000 0", "'0x10000000000000000'" + wraps},
                 {"--calibrate 0 0 99999999999999999999999", "'99999999999999999999999'" + wraps},
                 {"--calibrate 36893488147419103233#1", "'36893488147419103233#1'" + wraps}});
}

TEST_F(SlotbusDemoOptions, AWidthAboveTheWidestIsPointedOut) {
  expectUnderstood("--trace", {"--prefixwidth 0", "--prefixwidth 4096", "--prefixwidth 0x1000"});
  expectRefused("--trace",
                {{"--prefixwidth 4097", "'4097' is above 4096, the widest prefix."},
                 {"--prefixwidth 0x1001", "'0x1001' is above 4096, the widest prefix."}});
}

TEST_F(SlotbusDemoOptions, ANumberOfWhichTheLibraryReadsAPartIsPointedOut) {
  expectRefused("--trace", {{"--prefixwidth 2#102", "'2#102' is no number for --prefixwidth."},
                            {"--prefixwidth 1#0", "'1#0' is no number for --prefixwidth."},
                            {"--linenumber ==12ab", "the term '==12ab' needs a number."},
                            {"--filter line==0x", "in the filter, 'line==0x' needs a number."},
                            {"--filter verb>=1e3", "in the filter, 'verb>=1e3' needs a number."},
                            {"--filter verb>=-1", "in the filter, 'verb>=-1' needs a number."}});
}

TEST_F(SlotbusDemoOptions, AFilterAmongTheWordsIsCheckedToo) {
  expectRefused("--trace",
                {{"--filter colour==1", "in the filter, 'colour==1' has no known field"},
                 {"--filter verbosity >= 100", "needs double quotes around it."},
                 {"--filter verbosity>=100 && line==5", "'&&' cannot follow the filter"}});
}

TEST_F(SlotbusDemoOptions, ADestinationThatIsNoneIsPointedOut) {
  expectRefused("--trace", {{"--destination fil",
                             "'fil' is no destination (vex, serial, file, recorder), "
                             "perhaps file."},
                            {"--destination ctf", "'ctf' is no destination"},
                            {"--destination \"\"", "'' is no destination"},
                            {"--destination serial 9601",
                             "is no baud rate of the serial port, "
                             "perhaps 9600."},
                            {"--destination file overwrit", "perhaps overwrite."},
                            {"--destination file /tmp/a", "'/tmp/a' is neither overwrite"},
                            {"--destination file C:a", "'C:a' is neither overwrite"},
                            {"--destination file C:/", "'C:/' is neither overwrite"}});
}

TEST_F(SlotbusDemoOptions, AFileNameMayHave127Characters) {
  std::string const name = "C:/" + std::string(124, 'x');
  expectUnderstood("--trace", {"--destination file " + name});
  expectRefused("--trace", {{"--destination file " + name + "x", "a name of 127 characters"}});
}

TEST_F(SlotbusDemoOptions, NonsenseOfAnyLengthGetsOneShortSentence) {
  for (std::string const& text :
       {std::string(100000, 'x'), std::string(100000, '-'), "\"" + std::string(50000, ' '),
        "--compname " + std::string(100000, '='), std::string("\x01\x02\xFF\xFE"),
        "--" + std::string(40, 't')}) {
    for (char const* option : {"--trace", "--assert"}) {
      tRun const done = check(option, text);
      EXPECT_EQ(done.exitCode, 64);
      EXPECT_TRUE(isOneSentence(done.errors));
      EXPECT_LT(done.errors.size(), 300U);
    }
  }
}

TEST_F(SlotbusDemoOptions, AVeryLongListOfGoodWordsIsUnderstood) {
  std::string text;
  for (int count = 0; count < 2000; ++count) text += "--timestamp on --indent off ";
  expectUnderstood("--trace", {text});
}

TEST_F(SlotbusDemoOptions, WhatIsPointedOutIsNotRun) {
  tRun const done = run({"--trace", "--timestmp"});
  EXPECT_EQ(done.exitCode, 64);
  EXPECT_EQ(done.output, "");
}

TEST_F(SlotbusDemoOptions, AnOptionWithoutItsTextIsWrongUsage) {
  for (char const* option : {"--trace", "--assert", "--drive-c", "--serial"}) {
    EXPECT_EQ(run({option}).exitCode, 64) << option;
  }
}

TEST_F(SlotbusDemoOptions, TheTraceOptionsAreTheLibrarys) {
  tRun const done = run({"--trace", "--compname off --linenumber off --prefixwidth 20"});
  EXPECT_EQ(done.output.substr(0, 24), "[tProgramRack.cpp--]   t");
}

TEST_F(SlotbusDemoOptions, AMasterSwitchThatIsOffLeavesOnlyTheExitCode) {
  tRun const done = run({kFaultyRack, "--trace", "--off"});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(done.output, "");
}

TEST_F(SlotbusDemoOptions, TheFilterComesBehindTheTraceOptions) {
  tRun const done = run({"--filter", "&& verbosity>=150", "--trace", "--filter verbosity>=120"});
  EXPECT_EQ(countLines(done.output), 1U);
}

TEST_F(SlotbusDemoOptions, TheAssertOptionsChangeNoLineOfAGoodProgram) {
  std::string const usual = run({"--filter", "verbosity>=60 && verbosity!=140"}).output;
  for (char const* words :
       {"--category default --break off --checks off", "--preconditions off", "--terminate on"}) {
    tRun const done = run({"--filter", "verbosity>=60 && verbosity!=140", "--assert", words});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.output, usual) << words;
  }
}

TEST_F(SlotbusDemoOptions, HelpListsEveryWordOfBothKinds) {
  tRun const done = run({"--help"});
  EXPECT_EQ(done.exitCode, 0);
  for (tWords const& words : {traceSwitches, assertSwitches,
                              tWords{"--on", "--off", "--prefixwidth", "--filter",
                                     "--mutex-kernel-token", "--destination", "--calibrate",
                                     "--category", "vex", "serial", "file", "recorder"}}) {
    for (std::string const& word : words) {
      EXPECT_TRUE(contains(done.output, "\n  " + word + " ")) << word;
    }
  }
}

TEST_F(SlotbusDemoOptions, HelpFitsATerminal) {
  std::string const text = run({"--help"}).output;
  for (size_t begin = 0; begin < text.size();) {
    size_t const end = text.find('\n', begin);
    std::string const line = text.substr(begin, end - begin);
    // The place of the default rack is as long as it is.
    EXPECT_TRUE(line.size() <= 80 || contains(line, "rack.txt")) << line;
    begin = end + 1;
  }
}
