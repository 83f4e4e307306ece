// Numbers in formatted text.

#include "conformance/harness.h"
#include "support/writtenLine.h"

TEST(TracePutfNumbers, DecimalNumbersAreSigned) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%d", -5), "-5\n");
  EXPECT_STREQ(line.putf("%d", 5), "5\n");
  EXPECT_STREQ(line.putf("%i", -17), "-17\n");
  EXPECT_STREQ(line.putf("%i", 0), "0\n");
}

TEST(TracePutfNumbers, LimitsOf32BitsAreWritten) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%d", INT32_MIN), "-2147483648\n");
  EXPECT_STREQ(line.putf("%d", INT32_MAX), "2147483647\n");
  EXPECT_STREQ(line.putf("%u", UINT32_MAX), "4294967295\n");
  EXPECT_STREQ(line.putf("%o", UINT32_MAX), "37777777777\n");
  EXPECT_STREQ(line.putf("%x", UINT32_MAX), "ffffffff\n");
}

TEST(TracePutfNumbers, UnsignedDecimalNumbersHaveNoSign) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%u", 5), "5\n");
  EXPECT_STREQ(line.putf("%u", -1), "4294967295\n");
}

TEST(TracePutfNumbers, OctalAndHexadecimalNumbersShowTheBits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%o", 8), "10\n");
  EXPECT_STREQ(line.putf("%o", -1), "37777777777\n");
  EXPECT_STREQ(line.putf("%x", -2), "fffffffe\n");
}

TEST(TracePutfNumbers, TheLetterChoosesSmallOrCapitalDigits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%x", 0x90ABCDEF), "90abcdef\n");
  EXPECT_STREQ(line.putf("%X", 0x90ABCDEF), "90ABCDEF\n");
}

TEST(TracePutfNumbers, PlusShowsASignOfNumbersThatAreNotNegative) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%+d", 5), "+5\n");
  EXPECT_STREQ(line.putf("%+i", 0), "+0\n");
  EXPECT_STREQ(line.putf("%+d", -5), "-5\n");
}

TEST(TracePutfNumbers, BlankShowsABlankInFrontOfNumbersThatAreNotNegative) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("% d", 5), " 5\n");
  EXPECT_STREQ(line.putf("% i", 0), " 0\n");
  EXPECT_STREQ(line.putf("% d", -5), "-5\n");
}

TEST(TracePutfNumbers, PlusPrevailsOverBlank) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%+ d", 5), "+5\n");
  EXPECT_STREQ(line.putf("% +d", 5), "+5\n");
}

TEST(TracePutfNumbers, UnsignedDecimalNumbersShowTheSignThatIsAskedFor) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%+u", 5), "+5\n");
  EXPECT_STREQ(line.putf("% u", 5), " 5\n");
}

TEST(TracePutfNumbers, OctalAndHexadecimalNumbersHaveNoSign) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%+o", 8), "10\n");
  EXPECT_STREQ(line.putf("%+ x", 255), "ff\n");
  EXPECT_STREQ(line.putf("% X", 255), "FF\n");
}

TEST(TracePutfNumbers, NumberSignShowsTheRadix) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%#x", 255), "0xff\n");
  EXPECT_STREQ(line.putf("%#X", 255), "0XFF\n");
  EXPECT_STREQ(line.putf("%#o", 8), "010\n");
}

TEST(TracePutfNumbers, NumberSignMeansNothingToDecimalNumbers) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%#d %#i %#u", -5, 5, 5), "-5 5 5\n");
}

TEST(TracePutfNumbers, ZeroHasNoRadix) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%#x %#X %#o", 0, 0, 0), "0 0 0\n");
}

TEST(TracePutfNumbers, WidthIsPaddedOnTheLeft) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%5d|%5u|%5x|%5o|", -42, 42, 0x42, 042), "  -42|   42|   42|   42|\n");
}

TEST(TracePutfNumbers, MinusPadsOnTheRight) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%-5d|%-5u|%-5x|", -42, 42, 0x42), "-42  |42   |42   |\n");
}

TEST(TracePutfNumbers, WidthBelowTheLengthCutsNothing) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%3d|%2d|%-1d|", 123, 123, 123), "123|123|123|\n");
}

TEST(TracePutfNumbers, ZeroPadsBetweenTheSignAndTheDigits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%05d|%05d|%05u|", 42, -42, 42), "00042|-0042|00042|\n");
  EXPECT_STREQ(line.putf("%+05d|% 05d|", 42, 42), "+0042| 0042|\n");
}

TEST(TracePutfNumbers, ZeroPadsBehindTheRadix) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%#06x|%#06X|", 255, 255), "0x00ff|0X00FF|\n");
  EXPECT_STREQ(line.putf("%#06o|%08x|", 8, 255), "000010|000000ff|\n");
}

TEST(TracePutfNumbers, LeftJustifiedNumbersArePaddedWithBlanks) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%-05d|%0-5d|%-#08x|", 42, 42, 255), "42   |42   |0xff    |\n");
}

TEST(TracePutfNumbers, PrecisionIsTheLeastNumberOfDigits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.3d %.3d %.3u %.3x", 7, -7, 7, 7), "007 -007 007 007\n");
  EXPECT_STREQ(line.putf("%.2d %.3d", 1234, 123), "1234 123\n");
}

TEST(TracePutfNumbers, RadixIsNoDigitExceptTheOctalZero) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%#.3x %#.3o %#.2o", 7, 8, 8), "0x007 010 010\n");
}

TEST(TracePutfNumbers, WithPrecisionTheWidthIsPaddedWithBlanks) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%8.3d|%08.3d|%-8.3d|", 7, 7, 7), "     007|     007|007     |\n");
  EXPECT_STREQ(line.putf("%08.3d|%+08.3d|%#08.3x|", -7, 7, 7), "    -007|    +007|   0x007|\n");
  EXPECT_STREQ(line.putf("%05.0d|", 7), "    7|\n");
}

TEST(TracePutfNumbers, ZeroWithPrecisionZeroHasNoDigits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.0d|%.d|%.0x|%#.0x|%.0o|", 0, 0, 0, 0, 0), "|||||\n");
  EXPECT_STREQ(line.putf("%+.0d|%5.0d|%05.d|", 0, 0, 0), "+|     |     |\n");
  EXPECT_STREQ(line.putf("%#.0o|%#5.0o|", 0, 0), "0|    0|\n");
}

TEST(TracePutfNumbers, PrecisionZeroCutsNoDigits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.0d %.x", 12, 0xAB), "12 ab\n");
}

TEST(TracePutfNumbers, FlagsMayComeInAnyOrderAndRepeat) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%0+0+6d|%+06d|%--5d|%##x|", 42, 42, 42, 255),
               "+00042|+00042|42   |0xff|\n");
}

TEST(TracePutfNumbers, WidthMayBeAnArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*d|%-*d|%0*d|%*d|", 5, 42, 5, 42, 5, 42, 0, 42),
               "   42|42   |00042|42|\n");
}

TEST(TracePutfNumbers, NegativeWidthArgumentPadsOnTheRight) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*d|%-*d|%0*d|", -5, 42, -5, 42, -5, 42), "42   |42   |42   |\n");
}

TEST(TracePutfNumbers, PrecisionMayBeAnArgument) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.*d|%.*d|%.*x|", 4, 42, 0, 0, 1, 0x42), "0042||42|\n");
}

TEST(TracePutfNumbers, NegativePrecisionArgumentIsNone) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%.*d|%05.*d|%.*d|", -1, 0, -3, 42, INT32_MIN, 7), "0|00042|7|\n");
}

TEST(TracePutfNumbers, WidthComesBeforePrecisionBeforeTheNumber) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%*.*d|%-*.*x|", 6, 3, 7, 6, 3, 0xA), "   007|00a   |\n");
}

TEST(TracePutfNumbers, HalfNumbersOfSignedConversionsAreSignExtended) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%hd %hd %hi", 0x1FFFF, 0x18000, 0x17FFF), "-1 -32768 32767\n");
}

TEST(TracePutfNumbers, HalfNumbersOfOtherConversionsAreZeroExtended) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%hu %ho %hx %hX", -1, -1, -1, -1), "65535 177777 ffff FFFF\n");
  EXPECT_STREQ(line.putf("%hu %#hx", 0x10000, 0x10000), "0 0\n");
}

TEST(TracePutfNumbers, LongNumbersHave32Bits) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%ld %lu %lx %Ld %Li %LX", -5, -1, 255, -5, 5, 255),
               "-5 4294967295 ff -5 5 FF\n");
}

TEST(TracePutfNumbers, Of64BitArgumentsTheLowHalfIsShown) {
  tWrittenLine line;
  EXPECT_STREQ(line.putf("%d|%u|%x|%lx|%d", u64{0x1'FFFF'FFFF}, u64{0x500000007},
                         u64{0x123456789ABCDEF0}, u64{0x123456789ABCDEF0}, 5),
               "-1|7|9abcdef0|9abcdef0|5\n");
}

TEST(TracePutfNumbers, ManyArgumentsArriveInTheirOrder) {
  tWrittenLine line;
  EXPECT_STREQ(
      line.putf("%d %d %d %d %d %d %d %d %d %d %d %d", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12),
      "1 2 3 4 5 6 7 8 9 10 11 12\n");
}
