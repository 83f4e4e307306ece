// oxdiag-view's summary, and its formats for other programs, as python reads them.

#include <sstream>

#include "viewProgramTest.h"
#include "viewTest.h"

namespace {

class ViewOutputs : public tViewTest {
 protected:
  tRun check(char const* script, std::string const& file) const {
    return runProgram({"python3", "-I", "-S",
                       std::string(OXDIAG_SOURCE_DIR "/tests/host/view/") + script, pathOf(file)});
  }

  // What the script says of the trace as slices.
  tRun slicesOf(std::string const& trace) const {
    EXPECT_EQ(viewText(trace, {"--perfetto", pathOf("slices.json")}).exitCode, 0);
    return check("traceEvents.py", "slices.json");
  }

  tRun recordsOf(std::string const& trace) const {
    write("records.jsonl", viewText(trace, {"--jsonl"}).output);
    return check("logRecords.py", "records.jsonl");
  }

  std::string demoTrace(std::string const& words) const {
    return run({kFaultyRack, "--trace", "--filter --prefixwidth 100 " + words}).output;
  }
};

std::string stamped(char const* thread, int microseconds, std::string const& text) {
  std::string const stamp = std::to_string(5'000'000'000'000 + microseconds * 1000ll);
  return lineOf(std::string("rack--17--a.cpp--") + thread + "--" + stamp + "--60", text);
}

}  // namespace

TEST_F(ViewOutputs, BlocksAreSlicesOfTheirThreads) {
  tRun const done = slicesOf(stamped("0x1", 0, "outer; {") + stamped("0x2", 1, "outer; {") +
                             stamped("0x1", 2, "inner; {") + stamped("0x2", 5, "} outer") +
                             stamped("0x1", 7, "} inner") + stamped("0x1", 9, "} outer"));
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output, "1 0 9 0 outer -\n1 2 5 1 inner -\n2 1 4 0 outer -\n");
}

TEST_F(ViewOutputs, ABlockWithoutAnEndLastsToTheEndAroundIt) {
  tRun const done = slicesOf(stamped("0x1", 0, "outer; {") + stamped("0x1", 2, "lost; {") +
                             stamped("0x1", 5, "} outer") + stamped("0x1", 6, "open; {") +
                             stamped("0x1", 7, "deep; {") + stamped("0x2", 9, "line"));
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output,
            "1 0 5 0 outer -\n1 2 3 1 lost its end is not in the trace\n"
            "1 6 3 0 open its end is not in the trace\n"
            "1 7 2 1 deep its end is not in the trace\n");
}

TEST_F(ViewOutputs, ABlockWithoutABeginningLastsFromTheFirstLine) {
  tRun const done = slicesOf(stamped("0x1", 0, "line") + stamped("0x1", 1, "whole; {") +
                             stamped("0x1", 2, "} whole") + stamped("0x1", 5, "} inner") +
                             stamped("0x1", 6, "} outer"));
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output,
            "1 0 6 0 outer its beginning is not in the trace\n"
            "1 0 5 1 inner its beginning is not in the trace\n1 1 1 2 whole -\n");
}

// A slice that began before the block around it and ended within it would cross that.
TEST_F(ViewOutputs, ABlockWithoutABeginningStaysWithinTheBlockAround) {
  tRun const done = slicesOf(stamped("0x1", 0, "line") + stamped("0x1", 1, "outer; {") +
                             stamped("0x1", 5, "} gone") + stamped("0x1", 6, "} outer"));
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(done.output, "1 1 5 0 outer -\n1 1 4 1 gone its beginning is not in the trace\n");
}

// As of a server that runs all day: threads that have no open block are no memory.
TEST_F(ViewOutputs, ThreadsThatHaveGoneTakeNoOthersBlocks) {
  std::string trace = stamped("0x1", 0, "outer; {");
  for (int thread = 2; thread < 1100; ++thread) {
    char name[16];
    std::snprintf(name, sizeof(name), "0x%X", static_cast<unsigned int>(thread));
    trace += stamped(name, thread, "inner; {") + stamped(name, thread, "} inner");
  }
  trace += stamped("0x1", 4000, "} outer");
  tRun const done = slicesOf(trace);
  EXPECT_EQ(done.errors, "");
  EXPECT_FALSE(contains(done.output, "not in the trace"));
  EXPECT_TRUE(contains(done.output, "1 0 4000 0 outer -\n"));
  EXPECT_FALSE(contains(viewText(trace, {"--summary"}).output, "block without a"));
}

TEST_F(ViewOutputs, WholeDemoTracesAreSlices) {
  for (char const* words :
       {"--threadid --timestamp", "--timedelta", "--timestamp --indent off", ""}) {
    std::string const trace = demoTrace(words);
    tRun const done = slicesOf(trace);
    EXPECT_EQ(done.errors, "") << words;
    size_t blocks = 0;
    for (tKeptRecord const& record : readTrace(trace)) {
      blocks += record.kind == oxdiagview::tKind::kBlockBegin ? 1 : 0;
    }
    EXPECT_GT(blocks, 50u);
    EXPECT_EQ(countLines(done.output), blocks) << words;
    EXPECT_FALSE(contains(done.output, "not in the trace")) << done.output;
  }
}

TEST_F(ViewOutputs, OfNothingTheresAnEmptyListOfEvents) {
  EXPECT_EQ(slicesOf("").errors, "");
  EXPECT_EQ(slicesOf("\xFF\"\\\x01[\n").errors, "");
}

TEST_F(ViewOutputs, WholeDemoTracesAreLogRecords) {
  std::string const trace = demoTrace("--compver --threadid --timestamp --timedelta --verbosity");
  tRun const done = recordsOf(trace);
  EXPECT_EQ(done.errors, "");
  std::ostringstream wanted;
  for (tKeptRecord const& record : readTrace(trace)) {
    constexpr char const* kNames[] = {"line",   "block.begin", "block.end", "assertion",
                                      "status", "dump",        "legend",    "foreign"};
    wanted << record.number << ' '
           << (record.thread ? std::to_string(*record.thread) : std::string("-")) << ' '
           << kNames[static_cast<int>(record.kind)] << ' ' << record.depth << ' ' << record.text
           << '\n';
  }
  EXPECT_EQ(done.output, wanted.str());
}

TEST_F(ViewOutputs, NonsenseIsJsonAllTheSame) {
  std::string bytes;
  for (int value = 0; value < 0x10000; ++value) {
    bytes += static_cast<char>(value >> 8);
    bytes += static_cast<char>(value);
  }
  tRun const done = recordsOf(lineOf("rack--1--a.cpp", bytes) + bytes);
  EXPECT_EQ(done.errors, "");
  EXPECT_TRUE(contains(recordsOf("\xC3\xA4\xF0\x9F\x98\x80 \xC0\xAF \xED\xA0\x80\n").output,
                       " \xC3\xA4\xF0\x9F\x98\x80 \xEF\xBF\xBD\xEF\xBF\xBD "));
}

TEST_F(ViewOutputs, JsonDoesNotSteerATerminal) {
  std::string const text = lineOf("rack--1--a.cpp", "a\xC2\x9B\x1B\x7F\xE2\x80\xAE\xC3\xA4");
  char const* const wanted = "a\\u009B\\u001B\\u007F\\u202E\xC3\xA4\"";
  EXPECT_TRUE(contains(viewText(text, {"--jsonl"}).output, wanted));
  EXPECT_TRUE(contains(viewText(text, {"--perfetto", "-"}).output, wanted));
}

TEST_F(ViewOutputs, SeverityFollowsVerbosityAssertionsAndStatuses) {
  std::string const output =
      viewText(lineOf("rack--1--a.cpp--0x1--60", "one") +
                   lineOf("rack--1--a.cpp--0x1--120", "two") +
                   lineOf("rack--1--a.cpp--0x1--140", "three") +
                   lineOf("rack--1--a.cpp--0x1--105", "ASSERTION FAILED: four") +
                   lineOf("rack--1--a.cpp--0x1--105", "ASSERTION WARNING: five"),
               {"--jsonl"})
          .output;
  std::istringstream lines(output);
  for (char const* wanted : {",\"SeverityNumber\":5,\"SeverityText\":\"60\"",
                             ",\"SeverityNumber\":9,\"SeverityText\":\"120\"",
                             ",\"SeverityNumber\":17,\"SeverityText\":\"140\"",
                             ",\"SeverityNumber\":17,\"SeverityText\":\"105\"",
                             ",\"SeverityNumber\":13,\"SeverityText\":\"105\""}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_TRUE(contains(line, wanted)) << line;
  }
}

// From the first line of the trace on, whichever the filter shows.
TEST_F(ViewOutputs, TimestampsCountFromTheStartThatIsSaid) {
  std::string const trace = lineOf("rack--1--a.cpp", "no stamp") +
                            lineOf("boot--17--a.cpp--0x1--5000000000000--60", "boots") +
                            stamped("0x1", 1'000'000, "two") + stamped("0x2", -1, "before");
  for (char const* filter : {"comp==rack", "verbosity>=0"}) {
    std::string const output =
        viewText(trace, {"--jsonl", "--start", "2026-11-22T20:15:00.5Z", "--filter", filter})
            .output;
    for (char const* wanted : {"{\"Body\":\"no stamp\",\"Inst",
                               "{\"Body\":\"two\",\"Timestamp\":\"1795378501500000000\",",
                               "{\"Body\":\"before\",\"Timestamp\":\"1795378500499999000\","}) {
      EXPECT_TRUE(contains(output, wanted)) << output;
    }
  }
}

TEST_F(ViewOutputs, SummaryCountsAndMeasures) {
  tRun const done = viewText(
      stamped("0x1", 0, "outer; {") + stamped("0x2", 10, "ASSERTION WARNING: one") +
          stamped("0x2", 15, "ASSERTION FAILED (mine): two") +
          stamped("0x2", 16, "ASSERTION WARNING: three") +
          "tStatus2 Contents:\n\tError Code = -5\n" + stamped("0x1", 1016, "inner; {") +
          stamped("0x1", 1020, "} tStatus2 code=-7; inner") + stamped("0x1", 1030, "inner; {") +
          stamped("0x1", 1036, "} inner") + stamped("0x1", 2000, "} outer") +
          stamped("0x1", 2001, "} gone") + stamped("0x1", 2002, "open; {"),
      {"--summary"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.output,
            "13 lines, of which 11 with a prefix and 0 that are not of the trace\n"
            "2.00 ms from the first line to the last, by a counter of 1 GHz\n"
            "2 threads\n"
            "\nComponents\n        11  rack\n"
            "\nVerbosities\n        11  60\n"
            "\nAssertions that did not hold\n         2  warning\n         1  mine\n"
            "\nStatuses written, by code\n         1  -5\n"
            "\nStatuses at the ends of blocks, by code\n         1  -7\n"
            "\nSlowest blocks: longest, on average, how often, the line where the longest begins\n"
            "   2.00 ms   2.00 ms       1         1  outer (a.cpp:17)\n"
            "   6.00 µs   5.00 µs       2         9  inner (a.cpp:17)\n"
            "1 block without an end in the trace\n"
            "1 block without a beginning in the trace\n"
            "\nLongest times without a line, and the line behind\n"
            "   1.00 ms         7  a.cpp:17\n"
            "    964 µs        11  a.cpp:17\n"
            "   10.0 µs         2  a.cpp:17\n"
            "   10.0 µs         9  a.cpp:17\n"
            "   6.00 µs        10  a.cpp:17\n"
            "   5.00 µs         3  a.cpp:17\n"
            "   4.00 µs         8  a.cpp:17\n"
            "   1.00 µs         4  a.cpp:17\n"
            "   1.00 µs        12  a.cpp:17\n"
            "   1.00 µs        13  a.cpp:17\n");
}

TEST_F(ViewOutputs, SummaryOfNothingSaysSo) {
  EXPECT_EQ(viewText("", {"--summary"}).output,
            "0 lines, of which 0 with a prefix and 0 that are not of the trace\n"
            "no times: switch on --timestamp or --timedelta in the trace\n");
}

TEST_F(ViewOutputs, AFileThatCannotBeWrittenGetsOneSentence) {
  for (std::string const& name : {pathOf("absent/file"), std::string("/dev/full")}) {
    tRun const done = viewText(stamped("0x1", 0, "line"), {"--perfetto", name});
    EXPECT_EQ(done.exitCode, 4);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}
