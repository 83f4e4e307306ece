// Lines that are opened while another line of the same thread is not ended yet, as when an argument
// of a line traces.

#include "conformance/harness.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tBlockTracer.h"
#include "support/prefixedStream.h"

namespace {

using nOXDIAG100::iTraceable;
using nOXDIAG100::tTrace;

constexpr unsigned int kShown = 100;
constexpr unsigned int kHidden = 99;

// A stream without prefixes, into which operations of the lines trace as well.
struct tNestedStream : tPrefixedStream {
  tNestedStream() { trace.setMinPrefixWidth(0); }

  tTrace& open(unsigned int verbosity) { return withVerbosity(verbosity).openOn(trace); }

  // A value for a line; tells of itself in a line of its own.
  char const* getValue(unsigned int verbosity) {
    open(verbosity).put("inner").endl();
    return "value";
  }

  char const* text() const { return record.text(); }
};

// Traces when it is put into a line.
class tTalkative : public iTraceable {
 public:
  tTalkative(tNestedStream& stream, unsigned int verbosity)
      : stream(stream), verbosity(verbosity) {}
  void put(tTrace& trace) const override { trace.put(stream.getValue(verbosity)); }

 private:
  tNestedStream& stream;
  unsigned int verbosity;
};

}  // namespace

TEST(TraceLinesWithin, AShownLineContinuesTheShownOneItIsIn) {
  tNestedStream stream;
  stream.open(kShown).put("outer ").put(stream.getValue(kShown)).put(" end").endl();
  EXPECT_STREQ("outer inner\nvalue end\n", stream.text());
}

TEST(TraceLinesWithin, WithPrefixesOnlyWhatFollowsTheInnerLineHasNone) {
  tNestedStream stream;
  stream.showFieldsInFull();
  stream.open(kShown).put("outer ").put(stream.getValue(kShown)).endl();
  EXPECT_STREQ("[rack--42--port.cpp] outer [rack--42--port.cpp] inner\nvalue\n", stream.text());
}

TEST(TraceLinesWithin, AHiddenLineLeavesTheShownOneItIsInWhole) {
  tNestedStream stream;
  stream.open(kShown).put("outer ").put(stream.getValue(kHidden)).put(" end").endl();
  EXPECT_STREQ("outer value end\n", stream.text());
}

TEST(TraceLinesWithin, AHiddenLineInAHiddenOneLetsNothingThrough) {
  tNestedStream stream;
  stream.open(kHidden).put("outer ").put(stream.getValue(kHidden)).put(" end").endl();
  EXPECT_STREQ("", stream.text());
  EXPECT_TRUE(stream.trace.isLineShown());
}

TEST(TraceLinesWithin, AShownLineInAHiddenOneIsShownAlone) {
  tNestedStream stream;
  stream.open(kHidden).put("outer ").put(stream.getValue(kShown)).put(" end").endl();
  EXPECT_STREQ("inner\n", stream.text());
  EXPECT_TRUE(stream.trace.isLineShown());
}

TEST(TraceLinesWithin, AnObjectThatTracesWhileItIsPutIsALineWithinALine) {
  tNestedStream stream;
  stream.open(kHidden).put(tTalkative(stream, kHidden)).put(" end").endl();
  EXPECT_STREQ("", stream.text());
  stream.open(kShown).put(tTalkative(stream, kShown)).put(" end").endl();
  EXPECT_STREQ("inner\nvalue end\n", stream.text());
}

TEST(TraceLinesWithin, EachEndGivesBackTheVerdictOfTheLineAround) {
  tNestedStream stream;
  for (u32 verdicts = 0; verdicts < 1u << 6; ++verdicts) {
    for (u32 depth = 0; depth < 6; ++depth) {
      bool const isShown = ((verdicts >> depth) & 1) != 0;
      stream.open(isShown ? kShown : kHidden);
      EXPECT_TRUE(stream.trace.isLineShown() == isShown);
    }
    for (u32 depth = 6; depth-- != 0;) {
      EXPECT_TRUE(stream.trace.isLineShown() == (((verdicts >> depth) & 1) != 0));
      stream.trace.endl();
    }
    EXPECT_TRUE(stream.trace.isLineShown());
  }
}

TEST(TraceLinesWithin, EndsWithoutLinesTakeNothingBack) {
  tNestedStream stream;
  stream.trace.endl().endl();
  stream.open(kHidden).put("outer").put(stream.getValue(kHidden)).put("end").endl();
  stream.trace.endl();
  EXPECT_STREQ("\n\n\n", stream.text());
}

TEST(TraceLinesWithin, LinesBehindAHiddenOneThatIsNotEndedAreJudgedByThemselves) {
  tNestedStream stream;
  for (u32 count = 0; count < 100; ++count) stream.open(kHidden);
  stream.open(kShown).put("shown").endl();
  stream.open(kHidden).put("hidden").endl();
  EXPECT_STREQ("shown\n", stream.text());
}

TEST(TraceLinesWithin, WithTheMutexOnItIsTheSame) {
  tNestedStream stream;
  stream.trace.enableMutex();
  stream.open(kHidden).put("outer ").put(stream.getValue(kHidden)).put(" end").endl();
  stream.open(kShown).put("outer ").put(stream.getValue(kShown)).put(" end").endl();
  EXPECT_STREQ("outer inner\nvalue end\n", stream.text());
}

TEST(TraceLinesWithin, WhileTheStreamIsDisabledVerdictsAreKeptAllTheSame) {
  tNestedStream stream;
  stream.trace.disable();
  stream.open(kHidden);
  stream.open(kHidden).endl();
  stream.trace.enable();
  stream.trace.put("outer").endl();
  EXPECT_STREQ("", stream.text());
}

TEST(TraceLinesWithin, CalibratingInAHiddenLineLetsNothingThrough) {
  tNestedStream stream;
  stream.open(kHidden);
  stream.trace.calibrate();
  stream.trace.put("hidden").endl();
  stream.open(kShown).put("shown").endl();
  EXPECT_STREQ("shown\n", stream.text());
}
