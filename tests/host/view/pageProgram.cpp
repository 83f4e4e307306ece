// oxdiag-view --html: the page as a file, and what is in its way.

#include "viewProgramTest.h"

namespace {

class OxdiagViewPage : public tViewTest {
 protected:
  tRun makePage(std::string const& trace) const {
    return view({trace, "--html", pathOf("page.html")});
  }

  std::string page() const { return readFile("page.html"); }
};

std::string const kLines = lineOf("rack--17--a.cpp", "the first") + lineOf("rack", "<b>second</b>");

}  // namespace

TEST_F(OxdiagViewPage, HasEveryLineOfTheDemo) {
  run({kFaultyRack, "--filter", "verbosity>=60"});
  std::string const trace = readFile("output");
  std::filesystem::rename(pathOf("output"), pathOf("rack.out"));
  tRun const done = makePage(pathOf("rack.out"));
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.output + done.errors, "");
  EXPECT_TRUE(page().starts_with("<!DOCTYPE html>"));
  size_t const begin = page().find("\"lines\":[\n");
  EXPECT_EQ(countLines(page().substr(begin, page().find("\n],\n") - begin)), countLines(trace));
  EXPECT_TRUE(contains(page(), "\"title\":\"" + pathOf("rack.out") + "\""));
}

TEST_F(OxdiagViewPage, ReadsStandardInput) {
  std::string const command =
      "cat " + write("trace", kLines) + " | " + kView + " --html " + pathOf("page.html");
  EXPECT_EQ(runProgram({"sh", "-c", command}).exitCode, 0);
  EXPECT_TRUE(contains(page(), "\"title\":\"standard input\""));
  EXPECT_TRUE(contains(page(), "\"the first\"]"));
  EXPECT_TRUE(contains(page(), "\"\\u003Cb>second\\u003C/b>\"]"));
}

TEST_F(OxdiagViewPage, OfNothingIsAPageToo) {
  EXPECT_EQ(makePage("/dev/null").exitCode, 0);
  EXPECT_TRUE(contains(page(), "\"lines\":[\n],"));
}

TEST_F(OxdiagViewPage, OfBytesThatAreNoTextIsAPageToo) {
  std::string bytes;
  for (int value = 0; value < 100'000; ++value)
    bytes += static_cast<char>(value * 37 + value / 256);
  EXPECT_EQ(makePage(write("trace", bytes + std::string(1 << 20, 'x'))).exitCode, 0);
  EXPECT_TRUE(page().ends_with("</html>\n"));
}

TEST_F(OxdiagViewPage, DoesNotTakeThePlaceOfTheTrace) {
  std::string const trace = write("trace", kLines);
  tRun const done = view({trace, "--html", pathOf("./trace")});
  EXPECT_EQ(done.exitCode, 64);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_EQ(readFile("trace"), kLines);
}

TEST_F(OxdiagViewPage, TraceThatCannotBeReadLeavesTheFormerPage) {
  write("page.html", "former");
  tRun const done = makePage(pathOf("absent"));
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_EQ(page(), "former");
}

TEST_F(OxdiagViewPage, OfAFolderIsNone) {
  write("page.html", "former");
  tRun const done = makePage(pathOf(""));
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_EQ(page(), "former");
}

TEST_F(OxdiagViewPage, OfADumpWithoutARecorderIsNone) {
  write("page.html", "former");
  tRun const done = view({"--dump", write("dump", "none"), "--html", pathOf("page.html")});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_EQ(page(), "former");
}

TEST_F(OxdiagViewPage, DoesNotTakeThePlaceOfStandardInput) {
  std::string const trace = write("trace", kLines);
  std::string const program = std::string(kView) + " ";
  for (std::string const& redirected :
       {"--html " + trace + " <" + trace, trace + " >>" + trace, "<" + trace + " >>" + trace}) {
    tRun const done = runProgram({"sh", "-c", program + redirected});
    EXPECT_EQ(done.exitCode, 64) << redirected;
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
    EXPECT_EQ(readFile("trace"), kLines) << redirected;
  }
}

TEST_F(OxdiagViewPage, PageThatCannotBeWrittenGetsOneSentence) {
  std::string const trace = write("trace", kLines);
  for (std::string const& name : {pathOf("absent/page"), pathOf(""), std::string("/dev/full")}) {
    tRun const done = view({trace, "--html", name});
    EXPECT_EQ(done.exitCode, 4);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(OxdiagViewPage, GoesToStandardOutputToo) {
  tRun const done = view({write("trace", kLines), "--html", "-"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(done.output.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(done.output.ends_with("</html>\n"));
}

TEST_F(OxdiagViewPage, HasTheLinesThatTheFilterTakes) {
  view({write("trace", kLines), "--filter", "line==17", "--html", pathOf("page.html")});
  EXPECT_TRUE(contains(page(), "\"the first\"]"));
  EXPECT_FALSE(contains(page(), "\\u003Cb>"));
}

TEST_F(OxdiagViewPage, OtherOutputsAreWrongUsage) {
  std::string const trace = write("trace", kLines);
  for (char const* other : {"--summary", "--jsonl", "--follow"}) {
    EXPECT_EQ(view({trace, other, "--html", pathOf("page.html")}).exitCode, 64) << other;
  }
}
