// What the reader makes of texts that are no plain lines.

#include <gtest/gtest.h>

#include <ctime>

#include "viewTest.h"

using oxdiagview::tKind;
using oxdiagview::tTraceReader;

namespace {

std::string const kPrefix = "[rack--17--rackLine.cpp--------------------------] ";

std::vector<std::string> linesOf(std::vector<tKeptRecord> const& records) {
  std::vector<std::string> texts;
  for (tKeptRecord const& record : records) texts.push_back(record.text);
  return texts;
}

using tTexts = std::vector<std::string>;

}  // namespace

TEST(TraceReader, NothingHasNoRecords) {
  EXPECT_TRUE(readTrace("").empty());
}

TEST(TraceReader, PortionsDoNotMatter) {
  std::string const trace = kPrefix + "one\r\n" + kPrefix + "  two {\nforeign\n" + kPrefix + "end";
  for (size_t portion = 1; portion <= trace.size(); ++portion) {
    std::vector<tKeptRecord> const records = readTrace(trace, portion);
    EXPECT_EQ(linesOf(records), (tTexts{"one", "two {", "foreign", "end"}));
    EXPECT_EQ(records[3].number, 4u);
    EXPECT_EQ(records[1].depth, 1u);
  }
}

TEST(TraceReader, LineEndsOfFilesAndOfTheSerialPortAreTaken) {
  for (char const* end : {"\n", "\r\n", "\n\r"}) {
    std::vector<tKeptRecord> const records =
        readTrace(kPrefix + "one" + end + kPrefix + "two" + end);
    EXPECT_EQ(linesOf(records), (tTexts{"one", "two"}));
    EXPECT_EQ(records[0].raw, kPrefix + "one");
  }
}

TEST(TraceReader, AnEmptyLineIsARecord) {
  EXPECT_EQ(linesOf(readTrace(kPrefix + "one\n\n")), (tTexts{"one", ""}));
}

TEST(TraceReader, ALineBeyondTheLimitIsCutAndMarked) {
  for (size_t const more : {size_t{0}, size_t{1}, size_t{1} << 20}) {
    std::string const text(tTraceReader::kMostLine - kPrefix.size() + more, 'x');
    std::string const trace = kPrefix + text + "\n" + kPrefix + "next\n";
    for (size_t const portion : {size_t{1000}, trace.size()}) {
      std::vector<tKeptRecord> const records = readTrace(trace, portion);
      ASSERT_EQ(records.size(), 2u);
      EXPECT_EQ(records[0].raw.size(), tTraceReader::kMostLine);
      EXPECT_EQ(records[0].isCut, more != 0);
      EXPECT_EQ(records[1].text, "next");
      EXPECT_FALSE(records[1].isCut);
    }
  }
}

TEST(TraceReader, ALineWithoutEndIsMarked) {
  std::vector<tKeptRecord> const records = readTrace(kPrefix + "one\n" + kPrefix + "two");
  EXPECT_TRUE(records[0].isEnded);
  EXPECT_FALSE(records[1].isEnded);
}

TEST(TraceReader, ALineWithinALineIsARecord) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix + "slot 3: " + kPrefix + "reading slot 3\n64 bytes\n");
  EXPECT_EQ(linesOf(records), (tTexts{"slot 3: ", "reading slot 3", "64 bytes"}));
  EXPECT_EQ(records[1].number, 1u);
  EXPECT_EQ(records[1].component, "rack");
  EXPECT_EQ(records[2].kind, tKind::kForeign);
}

TEST(TraceReader, TextInFrontOfALineIsForeign) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix + "one\nthe rest of" + kPrefix + "two\n" + kPrefix + "three\n");
  EXPECT_EQ(linesOf(records), (tTexts{"one", "the rest of", "two", "three"}));
  EXPECT_EQ(records[1].kind, tKind::kForeign);
  EXPECT_EQ(records[2].sourceLine, 17u);
}

TEST(TraceReader, WhatAnotherProgramPutsInFrontOfEachLineIsPassedOver) {
  std::vector<tKeptRecord> const records =
      readTrace("00000001\t0.00012\t" + kPrefix + "one\n00000002\t0.00034\t" + kPrefix + "two\n");
  EXPECT_EQ(linesOf(records), (tTexts{"one", "two"}));
}

TEST(TraceReader, AStatusIsReadLineByLine) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix +
                "failed\ntStatus2 Contents:\n\tError Code = -61007\n\tStack Trace =\n"
                "\t\t0x5649249D1D28\n\t\n" +
                kPrefix + "next\n\tforeign\n");
  ASSERT_EQ(records.size(), 8u);
  for (size_t index = 1; index < 6; ++index) EXPECT_EQ(records[index].kind, tKind::kStatus);
  EXPECT_EQ(records[2].code, -61007);
  EXPECT_EQ(records[7].kind, tKind::kForeign);
}

TEST(TraceReader, RowsOfADumpAreFound) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix +
                "reply 00007FFE12345678: 04030201 0000XXXX : ....a.\n"
                "00007FFE12345688: 01 02 XX XX : ..\n");
  EXPECT_EQ(records[0].kind, tKind::kDump);
  EXPECT_EQ(records[1].kind, tKind::kDump);
  EXPECT_FALSE(records[1].hasPrefix);
}

TEST(TraceReader, BlocksHaveNameObjectAndStatus) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix + "show; this=0x7FFE10; tStatus=-5 {\n" + kPrefix + "} tStatus=7; show\n" +
                kPrefix + "{\n" + kPrefix + "} \n" + kPrefix + "an if {\n" + kPrefix + "a; b; {\n");
  EXPECT_EQ(records[0].kind, tKind::kBlockBegin);
  EXPECT_EQ(records[0].function, "show");
  EXPECT_EQ(records[0].object, "0x7FFE10");
  EXPECT_EQ(records[0].code, -5);
  EXPECT_EQ(records[1].kind, tKind::kBlockEnd);
  EXPECT_EQ(records[1].function, "show");
  EXPECT_EQ(records[1].code, 7);
  EXPECT_EQ(records[2].kind, tKind::kBlockBegin);
  EXPECT_EQ(records[3].kind, tKind::kBlockEnd);
  EXPECT_EQ(records[4].kind, tKind::kLine);
  EXPECT_EQ(records[5].function, "a; b");
}

TEST(TraceReader, AssertionsHaveCategoryAndMessage) {
  std::vector<tKeptRecord> const records =
      readTrace(kPrefix + "ASSERTION FAILED: a\n" + kPrefix + "ASSERTION WARNING: b\n" + kPrefix +
                "ASSERTION FAILED (mine): c\n" + kPrefix + "ASSERTION of nobody\n");
  EXPECT_EQ(records[0].category + records[0].message, "defaulta");
  EXPECT_EQ(records[1].category + records[1].message, "warningb");
  EXPECT_EQ(records[2].category + records[2].message, "minec");
  EXPECT_EQ(records[3].kind, tKind::kLine);
}

TEST(TraceReader, TextOfSomethingElseIsOnlyLines) {
  std::vector<tKeptRecord> const records = readTrace("[1] a footnote\nplain\n[ 0.123] kernel\n");
  EXPECT_EQ(linesOf(records), (tTexts{"[1] a footnote", "plain", "[ 0.123] kernel"}));
  for (tKeptRecord const& record : records) EXPECT_FALSE(record.sourceLine || record.verbosity);
}

TEST(TraceReader, TimesAreNanosecondsOfTheCounter) {
  std::string const end = "--------------------] ";
  std::vector<tKeptRecord> const records =
      readTrace("[rack--17--a.cpp--0x1A--5000000000001--5000000000001" + end + "one\n" +
                "[rack--18--a.cpp--0x1A--5000000002500--2499" + end + "two\n" +
                "[rack--18--a.cpp--0x1B--5000000001500--18446744073709550616" + end + "three\n");
  EXPECT_EQ(records[1].thread, 0x1Au);
  EXPECT_EQ(records[1].time, 5'000'000'002'500u);
  EXPECT_EQ(records[1].timeDelta, 2499);
  EXPECT_EQ(records[2].delta, -1000);
  EXPECT_EQ(records[2].timeDelta, -1000);
}

TEST(TraceReader, WithoutStampsTheDeltasAreSummed) {
  std::string const end = "--------------------] ";
  std::vector<tKeptRecord> const records =
      readTrace("[rack--17--a.cpp--5000000000001" + end + "one\n[rack--18--a.cpp--2499" + end +
                "two\n[rack--18--a.cpp--1001" + end + "three\n");
  EXPECT_EQ(records[0].time, 0u);
  EXPECT_EQ(records[1].time, 2499u);
  EXPECT_EQ(records[2].time, 3500u);
}

// Each bracket may begin a prefix: looking at all to the next end would take a minute here.
TEST(TraceReader, LinesOfBracketsTakeNoTimeToSpeakOf) {
  std::string line = kPrefix;
  while (line.size() < 30'000) line += "[]x";
  while (line.size() < 60'000) line += line.size() % 4000 < 3 ? "[x] " : "[x";
  std::string trace;
  for (int count = 0; count < 30; ++count) trace += line + "\n";
  std::clock_t const begin = std::clock();
  EXPECT_EQ(readTrace(trace).size(), 30u);
  EXPECT_LT(std::clock() - begin, 8 * CLOCKS_PER_SEC);
}

TEST(TraceReader, BracketsHideNoLineWithinALine) {
  std::vector<tKeptRecord> const records = readTrace(kPrefix + "a[0][1] [b] c" + kPrefix + "two\n");
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].text, "a[0][1] [b] c");
  EXPECT_EQ(records[1].text, "two");
}

TEST(TraceReader, BinaryIsRead) {
  std::string bytes;
  for (int value = 0; value < 4096; ++value) bytes += static_cast<char>(value * 37 + value / 256);
  uint64_t const lines = static_cast<uint64_t>(std::count(bytes.begin(), bytes.end(), '\n'));
  EXPECT_EQ(readTrace(bytes).back().number, lines + 1);
}

TEST(TraceReader, AnInputThatWasReplacedBeginsAtLineOne) {
  tKeepingSink sink;
  tTraceReader reader(sink, kTestRate);
  reader.feed(kPrefix + "one\n" + kPrefix + "cut");
  reader.flush();
  reader.restart();
  reader.feed(kPrefix + "two\n");
  reader.finish();
  EXPECT_TRUE(sink.isFinished);
  ASSERT_EQ(sink.records.size(), 3u);
  EXPECT_EQ(sink.records[1].text, "cut");
  EXPECT_FALSE(sink.records[1].isEnded);
  EXPECT_EQ(sink.records[2].text, "two");
  EXPECT_EQ(sink.records[2].number, 1u);
}
