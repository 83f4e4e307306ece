// What a prefix looks like: its fields, its width and its end.

#include "conformance/harness.h"
#include "support/prefixedStream.h"
#include "vexk/number.h"
#include "vexk/threadUtility.h"

using nOXDIAG100::tTrace;

namespace {

constexpr u32 kExpectedSize = 512;

// A text put together by a test.
struct tExpected {
  char text[kExpectedSize] = "";
  u32 length = 0;

  tExpected& clear() {
    length = 0;
    text[0] = '\0';
    return *this;
  }

  tExpected& add(char const* piece) {
    while (*piece != '\0' && length + 1 < kExpectedSize) text[length++] = *piece++;
    text[length] = '\0';
    return *this;
  }

  tExpected& add(char character, u32 times) {
    char const piece[2] = {character, '\0'};
    for (u32 count = 0; count < times; ++count) add(piece);
    return *this;
  }

  tExpected& addNumber(u64 number, u32 radix) {
    char digits[kNumberTextSize];
    vexNumberToText(number, radix, digits);
    return add(digits);
  }
};

// The prefix of these fields, by the rules told one after the other.
void expectPrefix(tExpected& expected, char const* fields, u32 width, bool isTruncated) {
  u32 const target = width == 0 ? 0 : width - 1;
  for (char const* field = fields; *field != '\0'; ++field) {
    if (!isTruncated || expected.length < target) expected.add(*field, 1);
  }
  if (expected.length < target) expected.add('-', target - expected.length);
  if (!isTruncated || width != 0) expected.add("] ");
}

// That of tTestLine with the default switches.
void expectDefaultPrefix(tExpected& expected, u32 width, bool isTruncated) {
  expectPrefix(expected, "[rack--42--port.cpp", width, isTruncated);
}

// A prefix of component and file of these lengths, and the verbosity.
bool isLongPrefixRight(tPrefixedStream& stream, u32 componentLength, u32 fileLength) {
  static constinit tExpected component;
  static constinit tExpected file;
  static constinit tExpected fields;
  static constinit tExpected wanted;
  component.clear().add('c', componentLength);
  file.clear().add('f', fileLength);
  fields.clear().add("[").add(component.text).add("--").add(file.text).add("--100");
  expectPrefix(wanted.clear(), fields.text, stream.trace.getMinPrefixWidth(),
               stream.trace.truncationIsEnabled() != 0);
  tTestLine line;
  line.component = component.text;
  line.file = file.text;
  return __builtin_strcmp(wanted.add("\n").text, stream.write(line)) == 0;
}

// The same of fields of many lengths.
u32 countWrongLongPrefixes(tPrefixedStream& stream) {
  constexpr u32 kLengths[] = {0, 1, 30, 117, 119, 120, 121, 240};
  u32 wrong = 0;
  for (u32 const component : kLengths) {
    for (u32 const file : kLengths) wrong += isLongPrefixRight(stream, component, file) ? 0 : 1;
  }
  return wrong;
}

}  // namespace

TEST(TracePrefix, ADefaultPrefixIsPaddedWithDashesTo51Characters) {
  tPrefixedStream stream;
  EXPECT_STREQ("[rack--42--port.cpp------------------------------] \n", stream.write());
  EXPECT_EQ(u32{52}, stream.record.length());
}

TEST(TracePrefix, TheTextOfTheLineFollows) {
  tPrefixedStream stream;
  tTestLine{}.openOn(stream.trace).put("slot ").put(7, 10).endl();
  EXPECT_STREQ("[rack--42--port.cpp------------------------------] slot 7\n", stream.record.text());
  EXPECT_EQ(u32{1}, stream.record.pieceCount());
}

TEST(TracePrefix, FieldsStandInTheirOrder) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.trace.enableComponentVersion();
  stream.trace.enableThreadId();
  stream.trace.enableTimeStamp();
  stream.trace.enableTimeDelta();
  stream.trace.enableVerbosity();
  stream.trace.getClock().setEnd(0);
  stream.trace.getCarriedDelta() = 1;
  stream.write();
  u64 const time = stream.trace.getClock().getStart();
  tExpected expected;
  expected.add("[rack--1.2.3f45--42--port.cpp--0x")
      .addNumber(tThreadUtility::getCurrentThreadId(), 16)
      .add("--")
      .addNumber(time, 10)
      .add("--")
      .addNumber(time + 1, 10)
      .add("--100] \n");
  EXPECT_STREQ(expected.text, stream.record.text());
}

TEST(TracePrefix, TheComponentNameIsShownAlone) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableComponentName();
  EXPECT_STREQ("[rack] \n", stream.write());
}

TEST(TracePrefix, TheVersionIsShownAlone) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableComponentVersion();
  EXPECT_STREQ("[1.2.3f45] \n", stream.write());
}

TEST(TracePrefix, TheLineNumberIsShownAloneInDecimal) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableLineNumber();
  EXPECT_STREQ("[42] \n", stream.write());
  tTestLine line;
  line.line = 0;
  EXPECT_STREQ("[0] \n", stream.write(line));
  line.line = 0xFFFFFFFF;
  EXPECT_STREQ("[4294967295] \n", stream.write(line));
}

TEST(TracePrefix, TheThreadIdIsShownAloneInHexadecimal) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableThreadId();
  tExpected expected;
  expected.add("[0x").addNumber(tThreadUtility::getCurrentThreadId(), 16).add("] \n");
  EXPECT_STREQ(expected.text, stream.write());
}

TEST(TracePrefix, TheTimeStampIsTheLineStartTimeInDecimal) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableTimeStamp();
  stream.write();
  tExpected expected;
  expected.add("[").addNumber(stream.trace.getClock().getStart(), 10).add("] \n");
  EXPECT_STREQ(expected.text, stream.record.text());
}

TEST(TracePrefix, TheVerbosityIsShownAloneInDecimal) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableVerbosity();
  EXPECT_STREQ("[100] \n", stream.write());
  EXPECT_STREQ("[4294967295] \n", stream.write(stream.withVerbosity(0xFFFFFFFF)));
}

// The file.

TEST(TracePrefix, TheFileIsShownWithoutItsPath) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableFileName();
  tTestLine line;
  line.file = "a/b\\c.cpp";
  EXPECT_STREQ("[c.cpp] \n", stream.write(line));
  line.file = "a\\b/c.cpp";
  EXPECT_STREQ("[c.cpp] \n", stream.write(line));
  line.file = "c.cpp";
  EXPECT_STREQ("[c.cpp] \n", stream.write(line));
  line.file = "/c.cpp";
  EXPECT_STREQ("[c.cpp] \n", stream.write(line));
}

TEST(TracePrefix, AFileThatEndsWithASeparatorIsShownAsNothing) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableFileName();
  tTestLine line;
  line.file = "a/b/";
  EXPECT_STREQ("[] \n", stream.write(line));
}

TEST(TracePrefix, ThePathSwitchShowsTheFileAsItWasPassed) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.showFieldsInFull();
  stream.trace.enableFileName();
  stream.trace.enableFilePath();
  EXPECT_STREQ("[source/io\\port.cpp] \n", stream.write());
}

TEST(TracePrefix, ThePathSwitchWithoutTheNameSwitchIsNoField) {
  tPrefixedStream stream;
  stream.trace.disableFileName();
  stream.trace.enableFilePath();
  stream.showFieldsInFull();
  EXPECT_STREQ("[rack--42] \n", stream.write());
}

TEST(TracePrefix, ThePathSwitchAloneCountsAsNoFieldSwitchedOn) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.trace.enableFilePath();
  stream.trace.setMinPrefixWidth(4);
  EXPECT_STREQ("     \n", stream.write());
}

TEST(TracePrefix, MissingTextsAreShownAsNothing) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  tTestLine line;
  line.component = nullptr;
  line.file = nullptr;
  EXPECT_STREQ("[--42--] \n", stream.write(line));
  stream.trace.enableFilePath();
  EXPECT_STREQ("[--42--] \n", stream.write(line));
}

TEST(TracePrefix, TheFormWithWritableTextsIsTheSame) {
  tPrefixedStream stream;
  char component[] = "rack";
  char file[] = "source/io/port.cpp";
  stream.trace.putPrefix(component, tSSVersion(), 42, file, 100, tTrace::kTraceLine).endl();
  EXPECT_STREQ("[rack--42--port.cpp------------------------------] \n", stream.record.text());
}

TEST(TracePrefix, ANewlineInAFieldEndsAPiece) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  tTestLine line;
  line.component = "ra\nck";
  EXPECT_STREQ("[ra\nck--42--port.cpp] \n", stream.write(line));
  EXPECT_TRUE(stream.record.pieceIs(0, "[ra\n"));
}

// Width and truncation.

TEST(TracePrefix, EveryWidthCutsAndPadsToOneLess) {
  for (u32 width = 0; width <= 60; ++width) {
    tPrefixedStream stream;
    stream.trace.setMinPrefixWidth(width);
    tExpected expected;
    expectDefaultPrefix(expected, width, true);
    EXPECT_STREQ(expected.add("\n").text, stream.write());
  }
}

TEST(TracePrefix, EveryWidthWithoutTruncationPadsAndCutsNothing) {
  for (u32 width = 0; width <= 60; ++width) {
    tPrefixedStream stream;
    stream.trace.disableTruncation();
    stream.trace.setMinPrefixWidth(width);
    tExpected expected;
    expectDefaultPrefix(expected, width, false);
    EXPECT_STREQ(expected.add("\n").text, stream.write());
  }
}

TEST(TracePrefix, Width0WithTruncationIsAnEmptyPrefix) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(0);
  EXPECT_STREQ("\n", stream.write());
}

TEST(TracePrefix, Width1WithTruncationShowsTheEndAlone) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(1);
  EXPECT_STREQ("] \n", stream.write());
}

TEST(TracePrefix, Width2WithTruncationLeavesRoomForOneCharacter) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(2);
  EXPECT_STREQ("[] \n", stream.write());
}

TEST(TracePrefix, Width0WithoutTruncationShowsTheFieldsInFull) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  EXPECT_STREQ("[rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefix, SeparatorsCountAndAreCut) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(7);
  EXPECT_STREQ("[rack-] \n", stream.write());
}

TEST(TracePrefix, AnOverlongFieldIsCutAtTheLimitAndTheRestIsDropped) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(10);
  tTestLine line;
  line.component = "averyverylongcomponent";
  EXPECT_STREQ("[averyver] \n", stream.write(line));
}

TEST(TracePrefix, NumbersAreCutToo) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.trace.enableLineNumber();
  stream.trace.setMinPrefixWidth(4);
  tTestLine line;
  line.line = 123456;
  EXPECT_STREQ("[12] \n", stream.write(line));
}

TEST(TracePrefix, TheHexadecimalMarkOfTheThreadIdIsCutToo) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.trace.enableThreadId();
  stream.trace.setMinPrefixWidth(3);
  EXPECT_STREQ("[0] \n", stream.write());
  stream.trace.setMinPrefixWidth(4);
  EXPECT_STREQ("[0x] \n", stream.write());
}

TEST(TracePrefix, AnOverlongPrefixWithoutTruncationIsWrittenInFull) {
  tPrefixedStream stream;
  stream.trace.disableTruncation();
  stream.trace.setMinPrefixWidth(10);
  tTestLine line;
  line.component = "averyverylongcomponent";
  EXPECT_STREQ("[averyverylongcomponent--42--port.cpp] \n", stream.write(line));
}

TEST(TracePrefix, WithoutAFieldThePrefixIsBlank) {
  tPrefixedStream stream;
  stream.disableAllFields();
  tExpected expected;
  expected.add(' ', 49 + 2).add("\n");
  EXPECT_STREQ(expected.text, stream.write());
}

TEST(TracePrefix, WithoutAFieldEveryWidthIsPaddedWithBlanks) {
  tPrefixedStream stream;
  stream.disableAllFields();
  stream.trace.setMinPrefixWidth(0);
  EXPECT_STREQ("\n", stream.write());
  stream.trace.setMinPrefixWidth(1);
  EXPECT_STREQ("  \n", stream.write());
  stream.trace.setMinPrefixWidth(2);
  EXPECT_STREQ("   \n", stream.write());
  stream.trace.disableTruncation();
  stream.trace.setMinPrefixWidth(0);
  EXPECT_STREQ("  \n", stream.write());
}

TEST(TracePrefix, AWidthBeyondTheLineBufferGoesOnInThePiecesBehind) {
  tPrefixedStream stream;
  stream.trace.setMinPrefixWidth(300);
  stream.write();
  tExpected expected;
  expectDefaultPrefix(expected, 300, true);
  EXPECT_STREQ(expected.add("\n").text, stream.record.text());
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_EQ(u32{255}, stream.record.pieceLength(0));
}

TEST(TracePrefix, LongFieldsAreCutAndPaddedAtEveryWidth) {
  tPrefixedStream stream;
  stream.trace.disableLineNumber();
  stream.trace.enableVerbosity();
  for (u32 width = 1; width <= 300; width += 1 + width % 3) {
    stream.trace.setMinPrefixWidth(width);
    EXPECT_EQ(u32{0}, countWrongLongPrefixes(stream));
  }
}

TEST(TracePrefix, LongFieldsWithoutTruncationArePaddedAndNotCut) {
  tPrefixedStream stream;
  stream.trace.disableLineNumber();
  stream.trace.enableVerbosity();
  stream.trace.disableTruncation();
  for (u32 width = 0; width <= 500; width += 50) {
    stream.trace.setMinPrefixWidth(width);
    EXPECT_EQ(u32{0}, countWrongLongPrefixes(stream));
  }
}

TEST(TracePrefix, PaddingIsExactAroundTheLengthOfARun) {
  for (u32 width = 82; width <= 86; ++width) {
    tPrefixedStream stream;
    stream.trace.setMinPrefixWidth(width);
    tExpected expected;
    expectDefaultPrefix(expected, width, true);
    EXPECT_STREQ(expected.add("\n").text, stream.write());
  }
}

// A line that is not shown.

TEST(TracePrefix, AHiddenLineWritesNothing) {
  tPrefixedStream stream;
  EXPECT_STREQ("", stream.write(stream.withVerbosity(99)));
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(TracePrefix, TheTextOfAHiddenLineIsDropped) {
  tPrefixedStream stream;
  stream.withVerbosity(99).openOn(stream.trace).put("hidden").put('\n').put(7, 10).endl();
  EXPECT_STREQ("", stream.record.text());
}

TEST(TracePrefix, TheLineBehindAHiddenOneIsJudgedAfresh) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.write(stream.withVerbosity(99));
  EXPECT_STREQ("[rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefix, APrefixBehindAHiddenOneWithoutEndIsJudgedAfresh) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.withVerbosity(99).openOn(stream.trace).put("hidden");
  EXPECT_STREQ("[rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefix, TextPutBeforeAHiddenLineHeadsTheNextShownOne) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.trace.put("early ");
  stream.write(stream.withVerbosity(99));
  EXPECT_STREQ("early [rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefix, TextPutBeforeTheStreamIsDisabledHeadsTheNextShownLine) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  stream.trace.put("early ");
  stream.trace.disable();
  EXPECT_STREQ("", stream.write());
  stream.trace.enable();
  EXPECT_STREQ("early [rack--42--port.cpp] \n", stream.write());
}

TEST(TracePrefix, AHugeWidthCostsNothingOnAHiddenLine) {
  tPrefixedStream stream;
  ASSERT_NE(stream.trace.getFilter(), nullptr);
  ASSERT_FALSE(stream.trace.getFilter()->isEmpty());
  stream.trace.setMinPrefixWidth(0xFFFFFFFF);
  for (u32 count = 0; count < 1000; ++count) stream.write(stream.withVerbosity(99));
  stream.trace.disable();
  for (u32 count = 0; count < 1000; ++count) stream.write();
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(TracePrefix, ADisabledStreamStillJudgesTheLine) {
  tPrefixedStream stream;
  stream.trace.disable();
  stream.withVerbosity(99).openOn(stream.trace);
  stream.trace.enable();
  EXPECT_FALSE(stream.trace.isLineShown());
  stream.trace.put("hidden");
  stream.trace.disable();
  stream.withVerbosity(100).openOn(stream.trace);
  stream.trace.enable();
  EXPECT_TRUE(stream.trace.isLineShown());
  stream.trace.put("shown").endl();
  EXPECT_STREQ("shown\n", stream.record.text());
}

TEST(TracePrefix, ALineIsShownOnlyWhileTheStreamIsEnabled) {
  tPrefixedStream stream;
  EXPECT_TRUE(stream.trace.isLineShown());
  stream.trace.disable();
  EXPECT_FALSE(stream.trace.isLineShown());
}
