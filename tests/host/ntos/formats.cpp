// The conversions of the kernel's printf.

#include <gtest/gtest.h>

#include <string>

#include "ntos/debug.h"
#include "ntoshost/debugPrint.h"

namespace {

void keep(void* context, char const* text, size_t length) {
  static_cast<std::string*>(context)->assign(text, length);
}

std::string formatted(char const* format, ...) {
  std::string text;
  va_list arguments;
  va_start(arguments, format);
  ntoshost::setDebugPrintSink(keep, &text);
  vDbgPrintEx(DPFLTR_IHVDRIVER_ID, DPFLTR_ERROR_LEVEL, format, arguments);
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  va_end(arguments);
  return text;
}

constexpr u64 kMaximum = 0xFFFF'FFFF'FFFF'FFFF;

TEST(Format, PlainTextAndPercentSignsStand) {
  EXPECT_EQ(formatted(""), "");
  EXPECT_EQ(formatted("a%%b%5%c"), "a%b%c");
}

TEST(Format, IntegersHaveThirtyTwoBitsAlsoWhenLong) {
  EXPECT_EQ(formatted("%d %i %ld", INT32_MIN, 0, INT32_MAX), "-2147483648 0 2147483647");
  EXPECT_EQ(formatted("%u %lu %I32u", 0xFFFFFFFFu, 0xFFFFFFFEu, 7u), "4294967295 4294967294 7");
  EXPECT_EQ(formatted("%lx %d", kMaximum, -1), "ffffffff -1");
}

TEST(Format, SixtyFourBitsHaveThreeNames) {
  EXPECT_EQ(formatted("%lld", INT64_MIN), "-9223372036854775808");
  EXPECT_EQ(formatted("%I64d", INT64_MAX), "9223372036854775807");
  EXPECT_EQ(formatted("%Iu", kMaximum), "18446744073709551615");
  EXPECT_EQ(formatted("%I64o", kMaximum), "1777777777777777777777");
}

TEST(Format, ShortIntegersAreCutToSixteenBits) {
  EXPECT_EQ(formatted("%hd %hu %hx", 0x18000, 0x1FFFF, 0x12345), "-32768 65535 2345");
}

TEST(Format, HexadecimalHasBothCases) {
  EXPECT_EQ(formatted("%x %X", 0xBEEF12u, 0xBEEF12u), "beef12 BEEF12");
}

TEST(Format, TheAlternateFormHasAPrefix) {
  EXPECT_EQ(formatted("%#x %#X %#o", 255u, 255u, 8u), "0xff 0XFF 010");
  EXPECT_EQ(formatted("%#x %#o", 0u, 0u), "0 0");
  EXPECT_EQ(formatted("%#u", 3u), "3");
}

TEST(Format, SignsAreShownOnRequest) {
  EXPECT_EQ(formatted("%+d % d %+d % d %+ d", 1, 2, -3, -4, 5), "+1  2 -3 -4 +5");
  EXPECT_EQ(formatted("%+u", 1u), "1");
}

TEST(Format, WidthPadsOnTheLeftOrTheRight) {
  EXPECT_EQ(formatted("[%5d][%-5d][%1d]", 42, 42, 42), "[   42][42   ][42]");
  EXPECT_EQ(formatted("[%*d][%*d]", 4, 7, -4, 7), "[   7][7   ]");
}

TEST(Format, ZerosFillTheWidthBehindSignAndPrefix) {
  EXPECT_EQ(formatted("%05d %08X %#06x", -42, 0xBEEFu, 0x1Fu), "-0042 0000BEEF 0x001f");
  EXPECT_EQ(formatted("[%-05d]", 42), "[42   ]");
}

TEST(Format, PrecisionIsTheLeastNumberOfDigits) {
  EXPECT_EQ(formatted("%.3d %.3d [%6.3d] [%06.3d]", 7, -7, 7, 7), "007 -007 [   007] [   007]");
  EXPECT_EQ(formatted("[%.0d][%.*d]", 0, 2, 5), "[][05]");
  EXPECT_EQ(formatted("[%.*d]", -1, 0), "[0]");
}

TEST(Format, APointerHasSixteenUpperCaseDigits) {
  EXPECT_EQ(formatted("%p", reinterpret_cast<void*>(0xFFFFF800DEADBEEF)), "FFFFF800DEADBEEF");
  EXPECT_EQ(formatted("%p", nullptr), "0000000000000000");
}

TEST(Format, CharactersOfBothKinds) {
  EXPECT_EQ(formatted("%c%C%lc%hC[%3c][%-3c]", 'a', L'b', L'c', 'd', 'e', 'f'), "abcd[  e][f  ]");
}

TEST(Format, TextEndsAtItsTerminatorOrItsPrecision) {
  char const open[3] = {'a', 'b', 'c'};
  EXPECT_EQ(formatted("%s|%.3s|%.0s|%.2s", "slot", open, open, "x"), "slot|abc||x");
  EXPECT_EQ(formatted("[%6s][%-6s][%2s]", "abc", "abc", "abc"), "[   abc][abc   ][abc]");
}

TEST(Format, WideTextHasThreeNames) {
  EXPECT_EQ(formatted("%S %ls %ws %hs", L"a", L"b", L"c", "d"), "a b c d");
  EXPECT_EQ(formatted("[%.2ws][%5ws][%-5ws]", L"abc", L"abc", L"abc"), "[ab][  abc][abc  ]");
}

TEST(Format, WideTextComesOutAsUtf8) {
  EXPECT_EQ(formatted("%ws", L"\u00B5V \u20AC \U0001F600"), "\u00B5V \u20AC \U0001F600");
}

TEST(Format, HalfASurrogatePairIsReplaced) {
  wchar_t const high[] = {0xD83D, 0};
  wchar_t const low[] = {0xDE00, L'x', 0};
  wchar_t const twice[] = {0xD83D, 0xD83D, 0xDE00, 0};
  EXPECT_EQ(formatted("%ws", high), "\uFFFD");
  EXPECT_EQ(formatted("%ws", low), "\uFFFDx");
  EXPECT_EQ(formatted("%ws", twice), "\uFFFD\U0001F600");
}

TEST(Format, APairThatThePrecisionCutsIsReplaced) {
  EXPECT_EQ(formatted("%.1ws|%.2ws", L"\U0001F600", L"\U0001F600"), "\uFFFD|\U0001F600");
}

TEST(Format, CountedTextNeedsNoTerminator) {
  char bytes[2] = {'a', 'b'};
  wchar_t units[2] = {L'c', L'd'};
  ANSI_STRING const narrow = {2, 2, bytes};
  UNICODE_STRING const wide = {4, 4, units};
  EXPECT_EQ(formatted("%Z %wZ [%4wZ]", &narrow, &wide, &wide), "ab cd [  cd]");
}

TEST(Format, NullTextIsNamed) {
  UNICODE_STRING const empty = {0, 0, nullptr};
  EXPECT_EQ(formatted("%s %ws %wZ %wZ", nullptr, nullptr, nullptr, &empty),
            "(null) (null) (null) (null)");
  EXPECT_EQ(formatted("%.3s [%8s]", nullptr, nullptr), "(nu [  (null)]");
}

TEST(Format, ArgumentsBeyondTheRegistersAreFound) {
  EXPECT_EQ(formatted("%d %s %d %I64x %d %d %s %d", 1, "two", 3, u64{4} << 32, 5, 6, "seven", 8),
            "1 two 3 400000000 5 6 seven 8");
}

TEST(Format, AHugeWidthFillsThePrintAndNoMore) {
  std::string const text = formatted("%*d", INT32_MAX, 1);
  EXPECT_EQ(text, std::string(kDebugPrintLimit - 1, ' ') + "\n");
}

}  // namespace
