// What block entries and exits do to the nesting level and the indentation, and which properties of
// a line the filter is asked about.

#include "conformance/harness.h"
#include "oxdiagk/tTraceFilter.h"
#include "support/prefixedStream.h"
#include "vexk/number.h"
#include "vexk/threadUtility.h"

using nOXDIAG100::tTrace;

namespace {

// A stream whose prefixes are the indentation alone.
struct tIndentedStream : tPrefixedStream {
  tIndentedStream() { trace.setMinPrefixWidth(0); }

  char const* write(tTrace::tTraceType type, unsigned int verbosity = 100) {
    record.clear();
    tTestLine line = withType(type);
    line.verbosity = verbosity;
    line.openOn(trace).put("x").endl();
    return record.text();
  }

  bool shows(char const* filter, tTestLine const& line = {}) {
    if (trace.getFilter() == nullptr) return false;
    trace.getFilter()->parseExpression(filter);
    record.clear();
    line.openOn(trace).put("x").endl();
    return record.length() != 0;
  }
};

}  // namespace

TEST(TracePrefixNesting, ANewStreamIsNotNested) {
  tIndentedStream stream;
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  EXPECT_STREQ("x\n", stream.write(tTrace::kTraceLine));
}

TEST(TracePrefixNesting, AnEntryRaisesTheLevelBehindItself) {
  tIndentedStream stream;
  EXPECT_STREQ("x\n", stream.write(tTrace::kBlockEntry));
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  EXPECT_STREQ("  x\n", stream.write(tTrace::kTraceLine));
  EXPECT_STREQ("  x\n", stream.write(tTrace::kBlockEntry));
  EXPECT_STREQ("    x\n", stream.write(tTrace::kTraceLine));
}

TEST(TracePrefixNesting, AnExitLowersTheLevelBeforeItself) {
  tIndentedStream stream;
  stream.write(tTrace::kBlockEntry);
  stream.write(tTrace::kBlockEntry);
  EXPECT_STREQ("  x\n", stream.write(tTrace::kBlockExit));
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  EXPECT_STREQ("x\n", stream.write(tTrace::kBlockExit));
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
}

TEST(TracePrefixNesting, AnExitAtLevel0StaysThere) {
  tIndentedStream stream;
  EXPECT_STREQ("x\n", stream.write(tTrace::kBlockExit));
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  stream.write(tTrace::kBlockEntry);
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
}

TEST(TracePrefixNesting, APlainLineMovesNothing) {
  tIndentedStream stream;
  stream.write(tTrace::kBlockEntry);
  stream.write(tTrace::kTraceLine);
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
}

TEST(TracePrefixNesting, AnUnknownTypeIsAPlainLine) {
  tIndentedStream stream;
  stream.write(tTrace::kBlockEntry);
  EXPECT_STREQ("  x\n", stream.write(static_cast<tTrace::tTraceType>(3)));
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
}

TEST(TracePrefixNesting, WithoutIndentingTheLevelMovesAndNothingIsIndented) {
  tIndentedStream stream;
  stream.trace.disableIndenting();
  EXPECT_STREQ("x\n", stream.write(tTrace::kBlockEntry));
  EXPECT_STREQ("x\n", stream.write(tTrace::kTraceLine));
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  stream.trace.enableIndenting();
  EXPECT_STREQ("  x\n", stream.write(tTrace::kTraceLine));
}

TEST(TracePrefixNesting, TheIndentationFollowsTheEndOfThePrefix) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(2);
  stream.writeBlockEntry();
  stream.writeBlockEntry();
  EXPECT_STREQ("[]     \n", stream.write());
}

TEST(TracePrefixNesting, DeepNestingIsIndentedInFull) {
  tIndentedStream stream;
  for (u32 count = 0; count < 70; ++count) stream.write(tTrace::kBlockEntry, 99);
  char const* const text = stream.write(tTrace::kTraceLine);
  EXPECT_EQ(u32{142}, stream.record.length());
  for (u32 index = 0; index < 140; ++index) EXPECT_EQ(' ', text[index]);
  EXPECT_EQ('x', text[140]);
}

TEST(TracePrefixNesting, HiddenLinesMoveTheLevelToo) {
  tIndentedStream stream;
  EXPECT_STREQ("", stream.write(tTrace::kBlockEntry, 99));
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  EXPECT_STREQ("", stream.write(tTrace::kBlockExit, 99));
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  EXPECT_STREQ("", stream.write(tTrace::kBlockExit, 99));
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
}

TEST(TracePrefixNesting, LinesOfADisabledStreamMoveTheLevelToo) {
  tIndentedStream stream;
  stream.trace.disable();
  stream.write(tTrace::kBlockEntry);
  stream.write(tTrace::kBlockEntry);
  EXPECT_EQ(i32{2}, stream.trace.getNestingLevel());
  stream.write(tTrace::kBlockExit);
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
}

// The filter.

TEST(TracePrefixFilter, TheComponentIsAsked) {
  tIndentedStream stream;
  EXPECT_TRUE(stream.shows("compname==rack"));
  EXPECT_FALSE(stream.shows("compname==slot"));
}

TEST(TracePrefixFilter, TheVersionIsAskedAsText) {
  tIndentedStream stream;
  EXPECT_TRUE(stream.shows("compver==1.2.3f45"));
  EXPECT_FALSE(stream.shows("compver==1.2.3f46"));
}

TEST(TracePrefixFilter, TheLineNumberIsAsked) {
  tIndentedStream stream;
  EXPECT_TRUE(stream.shows("linenumber<=42"));
  EXPECT_FALSE(stream.shows("linenumber<42"));
}

TEST(TracePrefixFilter, TheFileIsAskedWithItsPath) {
  tIndentedStream stream;
  EXPECT_TRUE(stream.shows("filename==source/io\\port.cpp"));
  EXPECT_FALSE(stream.shows("filename==port.cpp"));
}

TEST(TracePrefixFilter, TheCurrentThreadIsAsked) {
  tIndentedStream stream;
  char expression[kNumberTextSize + 16] = "threadid==";
  vexNumberToText(tThreadUtility::getCurrentThreadId(), 10, expression + 10);
  EXPECT_TRUE(stream.shows(expression));
  EXPECT_FALSE(stream.shows("threadid==0"));
}

TEST(TracePrefixFilter, TheVerbosityIsAsked) {
  tIndentedStream stream;
  EXPECT_TRUE(stream.shows("verbosity==100"));
  EXPECT_FALSE(stream.shows("verbosity==101"));
}

TEST(TracePrefixFilter, MissingTextsAreAskedAsEmpty) {
  tIndentedStream stream;
  tTestLine line;
  line.component = nullptr;
  line.file = nullptr;
  EXPECT_FALSE(stream.shows("compname==rack || filename==port.cpp", line));
  EXPECT_TRUE(stream.shows("compname<a && filename<a", line));
}

TEST(TracePrefixFilter, AnEmptyFilterShowsEveryLine) {
  tIndentedStream stream;
  ASSERT_NE(stream.trace.getFilter(), nullptr);
  stream.trace.getFilter()->removeAll();
  EXPECT_STREQ("x\n", stream.write(tTrace::kTraceLine, 0));
}
