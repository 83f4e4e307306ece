// The check that the driver traces what the host program traces can fail: it is given outputs of
// the host program, one of them changed as a fault in the driver would change it.

#include "demoTest.h"
#include "patterns.h"

namespace {

char const* const kCheck = OXDIAG_SOURCE_DIR "/tests/kernel/checkDemo.py";

class SlotbusComparison : public tDemoTest {
 protected:
  void SetUp() override {
    tDemoTest::SetUp();
    traced = run({kFaultyRack}).output;
  }

  int compareWith(std::string const& other) const {
    std::string const host = write("host", traced);
    return runProgram({"python3", kCheck, host, write("kernel", other)}).exitCode;
  }

  std::string replaced(char const* pattern, char const* text) const {
    return replaceFirst(traced, pattern, text);
  }

  std::string traced;
};

}  // namespace

TEST_F(SlotbusComparison, TheSameOutputPasses) {
  EXPECT_EQ(compareWith(traced), 0);
}

TEST_F(SlotbusComparison, OtherAddressesPass) {
  EXPECT_EQ(compareWith(replaced("\t\t0x[0-9A-F]+", "\t\t0x1234")), 0);
}

TEST_F(SlotbusComparison, OtherAddressesOfDescriptionsPass) {
  EXPECT_EQ(compareWith(replaced("Description = 0x[0-9A-F]+", "Description = 0x1234")), 0);
}

TEST_F(SlotbusComparison, AMissingDescriptionFails) {
  EXPECT_EQ(compareWith(replaced("Description = 0x[0-9A-F]+", "Description = 0x0")), 1);
}

TEST_F(SlotbusComparison, OtherLineNumbersInPrefixesPass) {
  EXPECT_EQ(compareWith(replaced("--[0-9]+--tRackReader.cpp-", "--4--tRackReader.cpp-")), 0);
}

TEST_F(SlotbusComparison, LinesOfTheDriverPass) {
  EXPECT_EQ(compareWith("[slotbus--1--driver.cpp-] the driver starts\n" + traced), 0);
}

TEST_F(SlotbusComparison, AnotherTextFails) {
  EXPECT_EQ(compareWith(replaced("7.5 digit", "6.5 digit")), 1);
}

TEST_F(SlotbusComparison, AMissingDeviceFails) {
  EXPECT_EQ(compareWith(replaced("[^\n]*slot 5:[^\n]*\n", "")), 1);
}

TEST_F(SlotbusComparison, AnotherIndentationFails) {
  EXPECT_EQ(compareWith(replaced("\\] +slot 5:", "] slot 5:")), 1);
}

TEST_F(SlotbusComparison, AnotherCodeFails) {
  EXPECT_EQ(compareWith(replaced("Error Code = -61007", "Error Code = -61008")), 1);
}

TEST_F(SlotbusComparison, AShorterStackTraceFails) {
  EXPECT_EQ(compareWith(replaced("\t\t0x[0-9A-F]+\n", "")), 1);
}

TEST_F(SlotbusComparison, AnEmptyStackTraceFails) {
  EXPECT_EQ(compareWith(replaced("Stack Trace =\n\t\t0x[0-9A-F]+", "Stack Trace =\n\t\t0x0")), 1);
}

TEST_F(SlotbusComparison, AGoodRackPassesWithoutAStatus) {
  traced = run({kDefaultRack}).output;
  EXPECT_FALSE(contains(traced, "tStatus2 Contents"));
  EXPECT_EQ(compareWith(traced), 0);
}

TEST_F(SlotbusComparison, AFailureWithoutAStatusFails) {
  traced = run({kFaultyRack, "--filter", "&& verbosity!=140"}).output;
  EXPECT_EQ(compareWith(traced), 1);
}

TEST_F(SlotbusComparison, NothingAtAllFails) {
  EXPECT_EQ(compareWith(""), 1);
  traced.clear();
  EXPECT_EQ(compareWith(""), 1);
}
