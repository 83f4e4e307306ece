// The demo's files, exit codes and sentences.

#include <sstream>

#include "demoTest.h"

namespace {

class SlotbusDemo : public tDemoTest {};

std::string const kGoodRack = "1 | 11 | A\\1 | first\n2 | 12 | A\\2 | second\n";

}  // namespace

TEST_F(SlotbusDemo, AGoodRackEndsWithZero) {
  tRun const done = run({write("good.txt", kGoodRack)});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_TRUE(contains(done.output, "slot 1: first (instance 11)\n"));
  EXPECT_TRUE(contains(done.output, "devices: 2, failures: 0, lines: 2\n"));
}

TEST_F(SlotbusDemo, ABadRackEndsWithOne) {
  tRun const done = run({write("bad.txt", kGoodRack + "3 | 13 | A\\3 |\n")});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(done.errors, "");
  EXPECT_TRUE(contains(done.output, "line 3: the description is missing"));
  EXPECT_TRUE(contains(done.output, "\tError Code = -61015\n"));
}

TEST_F(SlotbusDemo, WithoutFileTheDefaultRackIsReadAndGood) {
  tRun const done = run({});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_TRUE(contains(done.output, "the rack is "));
  EXPECT_TRUE(contains(done.output, "devices: 18, failures: 0, lines: 44\n"));
}

TEST_F(SlotbusDemo, TheFirstRunFitsOnTwoScreens) {
  size_t const screens = 2;
  size_t const linesOfScreen = 24;
  size_t const columns = 80;
  size_t rows = 0;
  std::istringstream output(run({}).output);
  for (std::string line; std::getline(output, line);) rows += 1 + line.size() / columns;
  EXPECT_LE(rows, screens * linesOfScreen);
}

TEST_F(SlotbusDemo, WithoutArgumentsTheLastLineSaysWhatToTryNext) {
  std::string const last =
      "Next: ./dev demo examples/slotbus/faulty.txt    a rack with seven mistakes, explained\n";
  EXPECT_TRUE(run({}).output.ends_with("the bus stops\n" + last));
  EXPECT_FALSE(contains(run({kDefaultRack}).output, "Next: "));
  EXPECT_FALSE(contains(run({"--filter", "verbosity>=150"}).output, "Next: "));
}

TEST_F(SlotbusDemo, WhatToTryNextIsASeriesOfFailuresWithReasons) {
  tRun const done = run({kFaultyRack});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_TRUE(contains(done.output, "devices: 27, failures: 7, lines: 62\n"));
}

TEST_F(SlotbusDemo, TheDefaultRackIsTheOneInTheSources) {
  tRun const implicit = run({"--filter", "verbosity>=120 && verbosity!=140"});
  tRun const given = run({kDefaultRack, "--filter", "verbosity>=120 && verbosity!=140"});
  EXPECT_EQ(implicit.output, given.output);
  EXPECT_EQ(countLines(given.output), 19U);
}

TEST_F(SlotbusDemo, EveryLineCarriesAPrefixOfItsSource) {
  tRun const done = run({write("good.txt", kGoodRack)});
  size_t begin = 0;
  while (begin < done.output.size()) {
    EXPECT_EQ(done.output.substr(begin, 10), "[slotbus--");
    EXPECT_EQ(done.output.substr(begin + 49, 2), "] ");
    begin = done.output.find('\n', begin) + 1;
  }
}

TEST_F(SlotbusDemo, AMissingFileGetsOneSentence) {
  tRun const done = run({pathOf("absent.txt")});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_EQ(done.output, "");
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "absent.txt"));
  EXPECT_TRUE(contains(done.errors, "No such file"));
}

TEST_F(SlotbusDemo, AFolderGetsOneSentence) {
  tRun const done = run({pathOf("")});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "Is a directory"));
}

TEST_F(SlotbusDemo, AFileWithoutPermissionGetsOneSentence) {
  if (geteuid() == 0) {
    // Root may read anything; the nearest thing to it is a file that refuses its reader.
    tRun const done = run({"/proc/self/mem"});
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
    return;
  }
  std::string const name = write("closed.txt", kGoodRack);
  ASSERT_EQ(chmod(name.c_str(), 0), 0);
  tRun const done = run({name});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "Permission denied"));
}

TEST_F(SlotbusDemo, AFileOfMoreThanOneMebibyteGetsOneSentence) {
  EXPECT_EQ(run({write("limit.txt", std::string(1 << 20, '\n'))}).exitCode, 0);
  tRun const done = run({write("huge.txt", std::string((1 << 20) + 1, '\n'))});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(SlotbusDemo, AnEndlessFileGetsOneSentence) {
  tRun const done = run({"/dev/zero"});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(SlotbusDemo, AnEmptyFileIsAnEmptyRack) {
  tRun const done = run({"/dev/null"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "the rack is empty"));
}

TEST_F(SlotbusDemo, ABinaryFileIsABadRack) {
  tRun const done = run({kDemo});
  // The program itself may be larger than a rack can be.
  EXPECT_TRUE(done.exitCode == 1 || done.exitCode == 2);
  std::string garbage = "x";
  for (int value = 0; value < 4096; ++value) garbage += static_cast<char>(value * 37 + value / 256);
  EXPECT_EQ(run({write("garbage.txt", garbage)}).exitCode, 1);
}

TEST_F(SlotbusDemo, WrongUsageIsDistinctFromAMissingFile) {
  for (std::vector<std::string> const& arguments :
       {std::vector<std::string>{"--colour"}, {"--filter"}, {"one.txt", "two.txt"}}) {
    tRun const done = run(arguments);
    EXPECT_EQ(done.exitCode, 64);
    EXPECT_EQ(done.output, "");
    EXPECT_NE(done.errors, "");
  }
}

TEST_F(SlotbusDemo, OutputThatCannotBeWrittenGetsOneSentence) {
  tRun const done = run({}, "/dev/full");
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}
