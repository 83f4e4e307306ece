// Formatted text of every length around the limits of the format buffer and of the line buffer.

#include "conformance/harness.h"
#include "support/writtenLine.h"

using nOXDIAG100::tTrace;

namespace {

constexpr u32 kMostCharacters = tTrace::kMaxTraceLine - 1;
constexpr u32 kPieceLength = 255;
constexpr char kWarning[] = "!!!Formatted string exceeds kMaxTraceLine characters!!!!";
constexpr u32 kWarningLength = sizeof(kWarning) - 1;

constexpr u32 kLongTextLength = 2000;
char longText[kLongTextLength + 1];
wchar_t longWideText[kLongTextLength + 1];

// Text of `count` characters: a, b, c ... z, a, b ...
char const* makeLetters(u32 count) {
  for (u32 index = 0; index < count; ++index) longText[index] = static_cast<char>('a' + index % 26);
  longText[count] = 0;
  return longText;
}

wchar_t const* makeWideLetters(u32 count) {
  makeLetters(count);
  for (u32 index = 0; index <= count; ++index)
    longWideText[index] = static_cast<wchar_t>(longText[index]);
  return longWideText;
}

bool isLetters(char const* text, u32 count) {
  for (u32 index = 0; index < count; ++index) {
    if (text[index] != static_cast<char>('a' + index % 26)) return false;
  }
  return true;
}

bool isFilledWith(char const* text, char character, u32 count) {
  for (u32 index = 0; index < count; ++index) {
    if (text[index] != character) return false;
  }
  return true;
}

// A line that got the warning and then as many characters as fit.
bool isCutLine(tWrittenLine& line) {
  return line.recorder.length() == kWarningLength + kMostCharacters + 1 &&
         __builtin_memcmp(line.recorder.text(), kWarning, kWarningLength) == 0;
}

bool isCutLetters(tWrittenLine& line) {
  return isCutLine(line) && isLetters(line.recorder.text() + kWarningLength, kMostCharacters);
}

bool isWholeLetters(tWrittenLine& line, u32 count) {
  return line.recorder.length() == count + 1 && isLetters(line.recorder.text(), count);
}

}  // namespace

TEST(TracePutfLength, TextOf1022CharactersFits) {
  tWrittenLine line;
  line.putf("%s", makeLetters(1022));
  EXPECT_TRUE(isWholeLetters(line, 1022));
}

TEST(TracePutfLength, TextOf1023CharactersFits) {
  tWrittenLine line;
  line.putf("%s", makeLetters(1023));
  EXPECT_TRUE(isWholeLetters(line, 1023));
}

TEST(TracePutfLength, TextOf1024CharactersIsCutBehindAWarning) {
  tWrittenLine line;
  line.putf("%s", makeLetters(1024));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, TextOf1025CharactersIsCutBehindAWarning) {
  tWrittenLine line;
  line.putf("%s", makeLetters(1025));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, MuchLongerTextIsCutTheSameWay) {
  tWrittenLine line;
  line.putf("%s%s", makeLetters(kLongTextLength), "more");
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, TheFormatItselfMayBeTooLong) {
  tWrittenLine line;
  line.putf(makeLetters(1023));
  EXPECT_TRUE(isWholeLetters(line, 1023));
  line.putf(makeLetters(1024));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, WideTextMayBeTooLong) {
  tWrittenLine line;
  line.putf("%ls", makeWideLetters(1023));
  EXPECT_TRUE(isWholeLetters(line, 1023));
  line.putf("%ls", makeWideLetters(1024));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, PrecisionMayMakeLongTextFit) {
  tWrittenLine line;
  line.putf("%.1023s", makeLetters(kLongTextLength));
  EXPECT_TRUE(isWholeLetters(line, 1023));
  line.putf("%.1024s", makeLetters(kLongTextLength));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, NumberMayCrossTheLimit) {
  tWrittenLine line;
  line.putf("%s%d", makeLetters(1020), 123);
  EXPECT_EQ(line.recorder.length(), u32{1024});
  EXPECT_STREQ(line.recorder.text() + 1020, "123\n");
  line.putf("%s%d", makeLetters(1020), 1234);
  EXPECT_TRUE(isCutLine(line));
  EXPECT_STREQ(line.recorder.text() + kWarningLength + 1020, "123\n");
}

TEST(TracePutfLength, MarkersMayCrossTheLimit) {
  tWrittenLine line;
  line.putf("%s%q", makeLetters(1000));
  EXPECT_TRUE(isCutLine(line));
  EXPECT_STREQ(line.recorder.text() + kWarningLength + 1000, "<<invalid conversion sp\n");
  line.putf("%s%f", makeLetters(1000));
  EXPECT_TRUE(isCutLine(line) == false);
  EXPECT_STREQ(line.recorder.text() + 1000, "<<'f' not supported>>\n");
  line.putf("%s%f", makeLetters(1003));
  EXPECT_TRUE(isCutLine(line));
}

TEST(TracePutfLength, PercentSignMayCrossTheLimit) {
  tWrittenLine line;
  line.putf("%s%%", makeLetters(1022));
  EXPECT_STREQ(line.recorder.text() + 1022, "%\n");
  line.putf("%s%%", makeLetters(1023));
  EXPECT_TRUE(isCutLetters(line));
}

TEST(TracePutfLength, WhatWritesNothingFitsBehindFullText) {
  tWrittenLine line;
  line.putf("%s%c%p%s%.0d", makeLetters(1023), 1, &line, "", 0);
  EXPECT_TRUE(isWholeLetters(line, 1023));
}

TEST(TracePutfLength, WidthMayFillTheBuffer) {
  tWrittenLine line;
  line.putf("%1023d", 5);
  EXPECT_EQ(line.recorder.length(), u32{1024});
  EXPECT_TRUE(isFilledWith(line.recorder.text(), ' ', 1022));
  EXPECT_STREQ(line.recorder.text() + 1022, "5\n");
  line.putf("%1024d", 5);
  EXPECT_TRUE(isCutLine(line));
  EXPECT_TRUE(isFilledWith(line.recorder.text() + kWarningLength, ' ', kMostCharacters));
}

TEST(TracePutfLength, WidthUpToItsLengthDoesNotPadTextThatIsTooLong) {
  tWrittenLine line;
  line.putf("%1025s", makeLetters(1025));
  EXPECT_TRUE(isCutLetters(line));
  line.putf("%1500ls", makeWideLetters(kLongTextLength));
  EXPECT_TRUE(isCutLetters(line));
  line.putf("%1100s", makeLetters(1090));
  EXPECT_TRUE(isCutLine(line));
  EXPECT_TRUE(isFilledWith(line.recorder.text() + kWarningLength, ' ', 10));
  EXPECT_TRUE(isLetters(line.recorder.text() + kWarningLength + 10, kMostCharacters - 10));
}

TEST(TracePutfLength, WidthMayBeAsLargeAsANumberGoes) {
  char const* const formats[] = {"%2000000000d",          "%2147483647d",  "%4294967295d",
                                 "%4294967297d",          "%99999999999d", "%99999999999s",
                                 "%18446744073709551617d"};
  for (char const* const format : formats) {
    tWrittenLine line;
    line.putf(format, 0);
    EXPECT_TRUE(isCutLine(line));
    EXPECT_TRUE(isFilledWith(line.recorder.text() + kWarningLength, ' ', kMostCharacters));
  }
}

TEST(TracePutfLength, LargeWidthOnTheRightKeepsTheNumber) {
  tWrittenLine line;
  line.putf("%-99999999999d", 42);
  EXPECT_TRUE(isCutLine(line));
  EXPECT_TRUE(__builtin_memcmp(line.recorder.text() + kWarningLength, "42   ", 5) == 0);
}

TEST(TracePutfLength, WidthArgumentMayHaveAnyValue) {
  tWrittenLine line;
  line.putf("%*d", INT32_MAX, 42);
  EXPECT_TRUE(isCutLine(line));
  EXPECT_TRUE(isFilledWith(line.recorder.text() + kWarningLength, ' ', kMostCharacters));
  line.putf("%*d", INT32_MIN, 42);
  EXPECT_TRUE(isCutLine(line));
  EXPECT_TRUE(__builtin_memcmp(line.recorder.text() + kWarningLength, "42   ", 5) == 0);
}

TEST(TracePutfLength, PrecisionMayBeAsLargeAsANumberGoes) {
  char const* const formats[] = {"%.1024d",       "%.2000000000d",  "%.4294967295d",
                                 "%.4294967296d", "%.99999999999x", "%01024d",
                                 "%04294967296u"};
  for (char const* const format : formats) {
    tWrittenLine line;
    line.putf(format, 0);
    EXPECT_TRUE(isCutLine(line));
    EXPECT_TRUE(isFilledWith(line.recorder.text() + kWarningLength, '0', kMostCharacters));
  }
}

TEST(TracePutfLength, LargePrecisionTakesAllText) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.99999999999s|%.*s|", "abc", INT32_MAX, "def"), "abc|def|\n");
}

TEST(TracePutfLength, TextArrivesInPiecesOf255Characters) {
  tWrittenLine line;
  line.trace.put("0123456789");
  line.putf("%s", makeLetters(600));
  EXPECT_EQ(line.recorder.pieceCount(), u32{3});
  EXPECT_EQ(line.recorder.pieceLength(0), kPieceLength);
  EXPECT_EQ(line.recorder.pieceLength(1), kPieceLength);
  EXPECT_EQ(line.recorder.pieceLength(2), u32{10 + 600 - 2 * 255 + 1});
}

TEST(TracePutfLength, CutTextArrivesInPiecesThatTheWarningBegins) {
  tWrittenLine line;
  line.putf("%s", makeLetters(1024));
  // 56 characters of warning, 1,023 of text and the newline.
  EXPECT_EQ(line.recorder.pieceCount(), u32{5});
  for (u32 piece = 0; piece < 4; ++piece) EXPECT_EQ(line.recorder.pieceLength(piece), kPieceLength);
  EXPECT_EQ(line.recorder.pieceLength(4), u32{60});
}

TEST(TracePutfLength, WarningFollowsWhatTheLineHolds) {
  tWrittenLine line;
  line.trace.put("before ").putf("%s", makeLetters(1024)).put(" after").endl();
  EXPECT_EQ(line.recorder.length(), 7 + kWarningLength + kMostCharacters + 7);
  EXPECT_TRUE(__builtin_memcmp(line.recorder.text(), "before !!!Formatted", 19) == 0);
  EXPECT_STREQ(line.recorder.text() + 7 + kWarningLength + kMostCharacters, " after\n");
}

TEST(TracePutfLength, WarningIsWrittenForEachText) {
  tWrittenLine line;
  line.trace.putf("%1024d", 1).putf("%d", 5).putf("%1024d", 1);
  line.end();
  EXPECT_EQ(line.recorder.length(), 2 * (kWarningLength + kMostCharacters) + 2);
}
