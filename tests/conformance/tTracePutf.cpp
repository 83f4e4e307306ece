// Formatted text: what is copied, text arguments, and the conversions that write no argument.
// Numbers, and text that is too long, have files of their own.

#include "conformance/harness.h"
#include "support/prefixedStream.h"
#include "support/writtenLine.h"

using nOXDIAG100::tTrace;

namespace {

constexpr char const* kNoText = nullptr;
constexpr wchar_t const* kNoWideText = nullptr;

}  // namespace

TEST(TracePutf, TextIsCopied) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("slot 5 answered"), "slot 5 answered\n");
  EXPECT_STREQ(line.putf("\t\x01\x7F\x80\xE4\xFF"), "\t\x01\x7F\x80\xE4\xFF\n");
}

TEST(TracePutf, EmptyFormatWritesNothing) {
  tWrittenLine line;
  line.trace.put("a").putf("").put("b");
  EXPECT_STREQ(line.end(), "ab\n");
}

TEST(TracePutf, NullFormatWritesNothing) {
  tWrittenLine line;
  line.trace.put("a").putf(nullptr).putf(nullptr, 5).put("b");
  EXPECT_STREQ(line.end(), "ab\n");
}

TEST(TracePutf, EmptyTextWritesNothing) {
  tWrittenLine line;
  line.trace.put("a").putf("%s%.0s%c", "", "x", 'y').put("b");
  EXPECT_STREQ(line.end(), "ab\n");
  EXPECT_EQ(line.recorder.pieceCount(), u32{1});
}

TEST(TracePutf, ChainsWithTheOtherPuts) {
  tWrittenLine line;
  EXPECT_TRUE(&line.trace.putf("%d", 1) == &line.trace);
  EXPECT_TRUE(&line.trace.putf(nullptr) == &line.trace);
  line.trace.put(" ").putf("slot %d", 5).put(" reply ").put(0x1F, 16).putf("%s", "!");
  EXPECT_STREQ(line.end(), "1 slot 5 reply 0x1F!\n");
}

TEST(TracePutf, StandsBetweenPrefixAndEnd) {
  tPrefixedStream stream;
  tTestLine{}.openOn(stream.trace).putf("slot %u", 5).endl();
  EXPECT_STREQ(stream.record.text(), "[rack--42--port.cpp------------------------------] slot 5\n");
}

TEST(TracePutf, ConversionsMayTouchEachOtherAndText) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("a%db%sc%%d%x%xe", 1, "two", 3, 4), "a1btwoc%d34e\n");
}

TEST(TracePutf, NewlineEndsALine) {
  tWrittenLine line;
  line.trace.putf("one\n%s", "two\nthree");
  EXPECT_STREQ(line.end(), "one\ntwo\nthree\n");
  EXPECT_EQ(line.recorder.pieceCount(), u32{3});
}

TEST(TracePutf, TextArgumentsAreNotFormats) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%s", "100%d %s %q"), "100%d %s %q\n");
}

TEST(TracePutf, PercentSignTakesNoArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%%%d%%", 5), "%5%\n");
}

TEST(TracePutf, PercentSignIsNeverPadded) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%5%|%-5%|%05.3%|%+#l%|%h%|", 1), "%|%|%|%|%|\n");
}

TEST(TracePutf, WidthOfAPercentSignMayBeAnArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*%|%.*%|%d", 5, 6, 7), "%|%|7\n");
}

TEST(TracePutf, TextIsWrittenInFull) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("<%s> <%s>", "abcdef", ""), "<abcdef> <>\n");
}

TEST(TracePutf, NullTextIsEmpty) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("<%s> <%.2s> <%d>", kNoText, kNoText, 5), "<> <> <5>\n");
  EXPECT_STREQ(line.putf("<%3s> <%-3s>", kNoText, kNoText), "<   > <   >\n");
  EXPECT_STREQ(line.putf("<%ls> <%3ls>", kNoWideText, kNoWideText), "<> <   >\n");
}

TEST(TracePutf, PrecisionLimitsText) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.3s", "abcdef"), "abc\n");
  EXPECT_STREQ(line.putf("%.6s|%.7s|%.5s|", "abcdef", "abcdef", "abcdef"),
               "abcdef|abcdef|abcde|\n");
  EXPECT_STREQ(line.putf("<%.0s> <%.s>", "abcdef", "abcdef"), "<> <>\n");
}

TEST(TracePutf, PrecisionOfTextMayBeAnArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("<%.*s> <%.*s>", 2, "abc", 0, "abc"), "<ab> <>\n");
  EXPECT_STREQ(line.putf("<%.*s> <%.*s>", -1, "abc", INT32_MIN, "abc"), "<abc> <abc>\n");
}

TEST(TracePutf, TextOfThePrecisionNeedsNoTerminator) {
  char const text[3] = {'a', 'b', 'c'};
  wchar_t const wideText[3] = {'d', 'e', 'f'};
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.3s%.3ls", text, wideText), "abcdef\n");
}

TEST(TracePutf, WidthPadsTextWithBlanks) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%5s|%-5s|%2s|%-2s|", "abc", "abc", "abc", "abc"),
               "  abc|abc  |abc|abc|\n");
  EXPECT_STREQ(line.putf("%5.2s|%-5.2s|", "abc", "abc"), "   ab|ab   |\n");
}

TEST(TracePutf, WidthOfTextMayBeAnArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*s|%*s|%-*s|", 5, "abc", -5, "abc", 5, "abc"), "  abc|abc  |abc  |\n");
  EXPECT_STREQ(line.putf("%*.*s|", -5, 2, "abc"), "ab   |\n");
}

TEST(TracePutf, FlagsOfNumbersMeanNothingToText) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%+s|%#s|% s|%05s|", "abc", "abc", "abc", "abc"), "abc|abc|abc|  abc|\n");
}

TEST(TracePutf, OfWideTextTheLowBytesAreWritten) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("<%ls>", L"Slot \x0141\x20AC\x00E9"), "<Slot \x41\xAC\xE9>\n");
}

TEST(TracePutf, WideTextHasWidthAndPrecisionInUnits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%5ls|%-5ls|%.2ls|%4.2ls|", L"abc", L"abc", L"abc", L"abc"),
               "  abc|abc  |ab|  ab|\n");
}

TEST(TracePutf, WideUnitWithALowByteOfZeroEndsTheText) {
  tWrittenLine line;
  line.trace
      .putf("%ls and %d",
            L"ab\x0100"
            L"cd",
            5)
      .put("!");
  EXPECT_STREQ(line.end(), "ab!\n");
}

TEST(TracePutf, OtherLengthsOfTextMeanNarrowText) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%hs %Ls", "abc", "def"), "abc def\n");
}

TEST(TracePutf, CharactersWriteNothingAndTakeTheirArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("<%c><%d>", 'x', 5), "<><5>\n");
  EXPECT_STREQ(line.putf("<%5c><%-5c><%05c><%lc><%d>", 1, 2, 3, 4, 5), "<><><><><5>\n");
  EXPECT_STREQ(line.putf("<%*c><%d>", 9, 'x', 5), "<><5>\n");
}

TEST(TracePutf, AddressesWriteNothingAndTakeTheirArgument) {
  tWrittenLine line;
  void const* const address = &line;
  EXPECT_STREQ(line.putf("<%p><%d>", address, 5), "<><5>\n");
  EXPECT_STREQ(line.putf("<%20p><%-20p><%#p><%d>", address, address, address, 5), "<><><><5>\n");
}

TEST(TracePutf, FloatingPointConversionsAreMarked) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%e %E %f"),
               "<<'e' not supported>> <<'E' not supported>> "
               "<<'f' not supported>>\n");
  EXPECT_STREQ(line.putf("%F %g %G"),
               "<<'F' not supported>> <<'g' not supported>> "
               "<<'G' not supported>>\n");
}

TEST(TracePutf, FloatingPointConversionsTakeNoArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%f|%d|%g|%d", 5, 6), "<<'f' not supported>>|5|<<'g' not supported>>|6\n");
}

TEST(TracePutf, FloatingPointConversionsTakeTheirWidthAndPrecision) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*f|%d", 30, 5), "<<'f' not supported>>|5\n");
  EXPECT_STREQ(line.putf("%*.*f|%d", 30, 2, 5), "<<'f' not supported>>|5\n");
}

TEST(TracePutf, MarkersAreNotPadded) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%30f|%-30.2lf|%+Lg|"),
               "<<'f' not supported>>|<<'f' not supported>>|"
               "<<'g' not supported>>|\n");
}

TEST(TracePutf, InvalidConversionIsMarkedAndEndsTheFormat) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("a %q b %d", 5), "a <<invalid conversion specifier 'q'>>\n");
}

TEST(TracePutf, AfterAnInvalidConversionTheLineGoesOn) {
  tWrittenLine line;
  line.trace.putf("%k dropped").put(" put").putf(" %d", 5);
  EXPECT_STREQ(line.end(), "<<invalid conversion specifier 'k'>> put 5\n");
}

TEST(TracePutf, InvalidConversionsHaveNoWidth) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%60.3q"), "<<invalid conversion specifier 'q'>>\n");
}

TEST(TracePutf, ConversionsOfOtherPrintfsAreInvalid) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%n"), "<<invalid conversion specifier 'n'>>\n");
  EXPECT_STREQ(line.putf("%a"), "<<invalid conversion specifier 'a'>>\n");
  EXPECT_STREQ(line.putf("%S"), "<<invalid conversion specifier 'S'>>\n");
  EXPECT_STREQ(line.putf("%D"), "<<invalid conversion specifier 'D'>>\n");
  EXPECT_STREQ(line.putf("%1$d", 5), "<<invalid conversion specifier '$'>>\n");
  EXPECT_STREQ(line.putf("%'d", 5), "<<invalid conversion specifier '''>>\n");
}

TEST(TracePutf, ThereAreNo64BitConversions) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%lld %d", u64{5}, 6), "<<invalid conversion specifier 'l'>>\n");
  EXPECT_STREQ(line.putf("%I64d", u64{5}), "<<invalid conversion specifier 'I'>>\n");
  EXPECT_STREQ(line.putf("%zu", u64{5}), "<<invalid conversion specifier 'z'>>\n");
  EXPECT_STREQ(line.putf("%jd", u64{5}), "<<invalid conversion specifier 'j'>>\n");
  EXPECT_STREQ(line.putf("%td", u64{5}), "<<invalid conversion specifier 't'>>\n");
  EXPECT_STREQ(line.putf("%qd", u64{5}), "<<invalid conversion specifier 'q'>>\n");
}

TEST(TracePutf, AtMostOneLengthLetterIsRead) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%hhd", 5), "<<invalid conversion specifier 'h'>>\n");
  EXPECT_STREQ(line.putf("%lLd", 5), "<<invalid conversion specifier 'L'>>\n");
}

TEST(TracePutf, PartsOfAConversionInAnotherOrderAreInvalid) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%5-d", 5), "<<invalid conversion specifier '-'>>\n");
  EXPECT_STREQ(line.putf("%.-5d", 5), "<<invalid conversion specifier '-'>>\n");
  EXPECT_STREQ(line.putf("%l5d", 5), "<<invalid conversion specifier '5'>>\n");
  EXPECT_STREQ(line.putf("%h.2d", 5), "<<invalid conversion specifier '.'>>\n");
  EXPECT_STREQ(line.putf("%**d", 1, 2, 3), "<<invalid conversion specifier '*'>>\n");
  EXPECT_STREQ(line.putf("%5*d", 1, 2), "<<invalid conversion specifier '*'>>\n");
}

TEST(TracePutf, AnyByteMayBeAnInvalidConversion) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%\xFF"), "<<invalid conversion specifier '\xFF'>>\n");
  EXPECT_STREQ(line.putf("%\x01x"), "<<invalid conversion specifier '\x01'>>\n");
  EXPECT_STREQ(line.putf("%l d", 5), "<<invalid conversion specifier ' '>>\n");
}

TEST(TracePutf, FormatThatEndsWithinAConversionEndsInFrontOfIt) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("ab%"), "ab\n");
  EXPECT_STREQ(line.putf("ab%-+ #0"), "ab\n");
  EXPECT_STREQ(line.putf("ab%5"), "ab\n");
  EXPECT_STREQ(line.putf("ab%*", 5), "ab\n");
  EXPECT_STREQ(line.putf("ab%."), "ab\n");
  EXPECT_STREQ(line.putf("ab%.*", 5), "ab\n");
  EXPECT_STREQ(line.putf("ab%5.3l"), "ab\n");
  EXPECT_STREQ(line.putf("%"), "\n");
}

TEST(TracePutf, DisabledStreamTakesNothing) {
  tWrittenLine line;
  line.trace.disable();
  EXPECT_TRUE(&line.trace.putf("%d", 5) == &line.trace);
  line.trace.putf("%2000d", 5);
  EXPECT_STREQ(line.end(), "");
  EXPECT_EQ(line.recorder.pieceCount(), u32{0});
}

TEST(TracePutf, RejectedLineTakesNothing) {
  tPrefixedStream stream;
  tPrefixedStream::withVerbosity(99).openOn(stream.trace).putf("hidden %d", 5).endl();
  EXPECT_EQ(stream.record.pieceCount(), u32{0});
}

TEST(TracePutf, ArgumentsOfAHiddenLineAreNotLookedAt) {
  tWrittenLine line;
  line.trace.disable();
  line.trace.putf("%s", reinterpret_cast<char const*>(1));
  EXPECT_EQ(line.recorder.pieceCount(), u32{0});
}

TEST(TracePutf, LongestLineIsAPublicConstant) {
  static_assert(tTrace::kMaxTraceLine == 1024);
  EXPECT_EQ(u32{tTrace::kMaxTraceLine}, u32{1024});
}
