// The demo's filter: what it shows, and what is pointed out about it.

#include "demoTest.h"

namespace {

class SlotbusDemoFilter : public tDemoTest {};

}  // namespace

TEST_F(SlotbusDemoFilter, TheFilterLeavesTheSummary) {
  tRun const done = run({kFaultyRack, "--filter", "verbosity>=150"});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(countLines(done.output), 1U);
  EXPECT_TRUE(contains(done.output, "devices: 27, failures: 7, lines: 62\n"));
}

TEST_F(SlotbusDemoFilter, TheFilterShowsDetails) {
  tRun const usual = run({});
  tRun const detailed = run({"--filter", "verbosity>=60"});
  EXPECT_FALSE(contains(usual.output, "hardware id RACK\\NVM\n"));
  EXPECT_TRUE(contains(detailed.output, "hardware id RACK\\NVM\n"));
  EXPECT_TRUE(contains(detailed.output, "readLine; tStatus2 code=0 {\n"));
  EXPECT_GT(countLines(detailed.output), countLines(usual.output));
}

TEST_F(SlotbusDemoFilter, AFilterThatBeginsWithAConnectorExtendsTheDefault) {
  tRun const done = run({"--filter", "&& filename!=examples/slotbus/component/tRackReader.cpp"});
  EXPECT_EQ(countLines(done.output), 3U);
  EXPECT_TRUE(contains(done.output, "the rack is "));
  EXPECT_TRUE(contains(done.output, "devices on the bus: 18\n"));
  EXPECT_TRUE(contains(done.output, "the bus stops\n"));
}

TEST_F(SlotbusDemoFilter, ALineNumberFilterPicksOneLineOfSource) {
  tRun const all = run({"--filter", "verbosity==120"});
  std::string const number = all.output.substr(10, all.output.find("--", 10) - 10);
  tRun const one = run({"--filter", "linenumber==" + number + " && verbosity==120"});
  EXPECT_EQ(one.output, all.output);
}

TEST_F(SlotbusDemoFilter, AnEmptyFilterChangesNothing) {
  EXPECT_EQ(run({kDefaultRack, "--filter", ""}).output, run({kDefaultRack}).output);
}

TEST_F(SlotbusDemoFilter, AFilterThatIsNotUnderstoodGetsOneSentence) {
  for (char const* filter :
       {"colour==1", "verbosity", "verbosity=5", "verbosity>=", "verbosity>=100 &&", "&&",
        "verbosity>=100 compname==a", "verbosity>=100 & line==1", "verbosity>=high", "==5",
        "verbosity>=100 && || line==5", "verbosity===5", "verbosity>=4294967396", "line==5x"}) {
    tRun const done = run({"--filter", filter});
    EXPECT_EQ(done.exitCode, 64) << filter;
    EXPECT_EQ(done.output, "") << filter;
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(SlotbusDemoFilter, EveryFieldAndOperatorOfAFilterIsUnderstood) {
  for (char const* filter :
       {"compname==slotbus", "compver!=1.0.0f2", "line<500", "filename>a", "thread>=0",
        "verb<=0xFFFF", "verbosity >= 100 && comp == slotbus || line > 5", "|| verbosity==60"}) {
    tRun const done = run({"--filter", filter});
    EXPECT_EQ(done.exitCode, 0) << filter;
    EXPECT_EQ(done.errors, "") << filter;
  }
}

TEST_F(SlotbusDemoFilter, HelpTellsVerbositiesFilterAndExitCodes) {
  tRun const done = run({"--help"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  for (char const* wanted : {"--filter", "150", "140", "120", "100", "60",
                             "verbosity>=", "Exit code", "linenumber", "64"}) {
    EXPECT_TRUE(contains(done.output, wanted)) << wanted;
  }
}
