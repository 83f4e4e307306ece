#include "config/options/numberText.h"

#include "conformance/harness.h"

using nOXDIAG100::readNumber;

namespace {

constexpr u32 kLargest = 0xFFFFFFFF;

}  // namespace

TEST(NumberText, ReadsDecimalDigits) {
  EXPECT_EQ(u32{0}, readNumber("0"));
  EXPECT_EQ(u32{7}, readNumber("7"));
  EXPECT_EQ(u32{1234567890}, readNumber("1234567890"));
}

TEST(NumberText, LeadingZerosDoNotMeanOctal) {
  EXPECT_EQ(u32{7}, readNumber("007"));
  EXPECT_EQ(u32{89}, readNumber("0089"));
}

TEST(NumberText, ReadsHexadecimalDigitsOfEitherCase) {
  EXPECT_EQ(u32{0xABCDEF}, readNumber("0xABCDEF"));
  EXPECT_EQ(u32{0xABCDEF}, readNumber("0xabcdef"));
  EXPECT_EQ(u32{0xAB09}, readNumber("0xaB09"));
}

TEST(NumberText, HexadecimalLeadingZerosMeanNothing) {
  EXPECT_EQ(u32{0x1F}, readNumber("0x0000000000001F"));
}

TEST(NumberText, TheHexadecimalMarkIsASmallX) {
  EXPECT_EQ(u32{0}, readNumber("0X1F"));
}

TEST(NumberText, TheHexadecimalMarkNeedsExactlyOneZero) {
  EXPECT_EQ(u32{0}, readNumber("00x1F"));
  EXPECT_EQ(u32{0}, readNumber("x1F"));
  EXPECT_EQ(u32{1}, readNumber("1x1F"));
}

TEST(NumberText, AHexadecimalMarkWithoutDigitsIsZero) {
  EXPECT_EQ(u32{0}, readNumber("0x"));
  EXPECT_EQ(u32{0}, readNumber("0xg1"));
}

TEST(NumberText, HexadecimalEndsAtTheFirstOtherCharacter) {
  EXPECT_EQ(u32{0x1F}, readNumber("0x1Fg2"));
  EXPECT_EQ(u32{0x1F}, readNumber("0x1F 2"));
  EXPECT_EQ(u32{0x10}, readNumber("0x10#11"));
}

TEST(NumberText, ReadsDigitsInAGivenRadix) {
  EXPECT_EQ(u32{5}, readNumber("2#101"));
  EXPECT_EQ(u32{8}, readNumber("8#10"));
  EXPECT_EQ(u32{31}, readNumber("10#31"));
  EXPECT_EQ(u32{0x31}, readNumber("16#31"));
  EXPECT_EQ(u32{37}, readNumber("36#11"));
}

TEST(NumberText, TheRadixMayHaveLeadingZeros) {
  EXPECT_EQ(u32{5}, readNumber("0002#101"));
}

TEST(NumberText, ADigitThatTheRadixLacksEndsTheNumber) {
  EXPECT_EQ(u32{2}, readNumber("2#102"));
  EXPECT_EQ(u32{7}, readNumber("8#789"));
  EXPECT_EQ(u32{0}, readNumber("2#2"));
}

TEST(NumberText, LettersAreNoDigitsBehindARadix) {
  EXPECT_EQ(u32{1}, readNumber("16#1F"));
  EXPECT_EQ(u32{0}, readNumber("16#F1"));
}

TEST(NumberText, RadixZeroAndOneHaveNoNumberButZero) {
  EXPECT_EQ(u32{0}, readNumber("0#0"));
  EXPECT_EQ(u32{0}, readNumber("0#11"));
  EXPECT_EQ(u32{0}, readNumber("1#0000"));
  EXPECT_EQ(u32{0}, readNumber("1#11"));
}

TEST(NumberText, ARadixMarkWithoutDigitsOnEitherSideIsZero) {
  EXPECT_EQ(u32{0}, readNumber("2#"));
  EXPECT_EQ(u32{0}, readNumber("#101"));
  EXPECT_EQ(u32{0}, readNumber("#"));
  EXPECT_EQ(u32{0}, readNumber("2# 101"));
  EXPECT_EQ(u32{2}, readNumber("2 #101"));
}

TEST(NumberText, ASecondRadixMarkEndsTheNumber) {
  EXPECT_EQ(u32{5}, readNumber("2#101#11"));
}

TEST(NumberText, SkipsLeadingBlanksAndTabs) {
  EXPECT_EQ(u32{42}, readNumber(" \t \t42"));
  EXPECT_EQ(u32{0x2A}, readNumber("\t 0x2A"));
  EXPECT_EQ(u32{5}, readNumber("  2#101"));
}

TEST(NumberText, OtherWhiteSpaceIsNotSkipped) {
  EXPECT_EQ(u32{0}, readNumber("\n42"));
  EXPECT_EQ(u32{0}, readNumber("\r42"));
  EXPECT_EQ(u32{0}, readNumber("\v42"));
  EXPECT_EQ(u32{0}, readNumber("\f42"));
}

TEST(NumberText, DecimalEndsAtTheFirstOtherCharacter) {
  EXPECT_EQ(u32{12}, readNumber("12ab"));
  EXPECT_EQ(u32{12}, readNumber("12 34"));
  EXPECT_EQ(u32{5}, readNumber("5:0"));
}

TEST(NumberText, TextWithoutDigitsIsZero) {
  EXPECT_EQ(u32{0}, readNumber(""));
  EXPECT_EQ(u32{0}, readNumber("   "));
  EXPECT_EQ(u32{0}, readNumber("abc"));
  EXPECT_EQ(u32{0}, readNumber(":0"));
}

TEST(NumberText, SignsAreNotRead) {
  EXPECT_EQ(u32{0}, readNumber("-5"));
  EXPECT_EQ(u32{0}, readNumber("+5"));
}

TEST(NumberText, BytesAboveSevenBitsAreNoDigits) {
  EXPECT_EQ(u32{3}, readNumber("3\xB1"));
  EXPECT_EQ(u32{0}, readNumber("\xB1"
                               "3"));
  EXPECT_EQ(u32{0x3}, readNumber("0x3\xE1"));
}

TEST(NumberText, TheLargestNumberFits) {
  EXPECT_EQ(kLargest, readNumber("4294967295"));
  EXPECT_EQ(kLargest, readNumber("0xFFFFFFFF"));
  EXPECT_EQ(kLargest, readNumber("2#11111111111111111111111111111111"));
}

TEST(NumberText, OfMoreThan32BitsTheLow32Stay) {
  EXPECT_EQ(u32{0}, readNumber("4294967296"));
  EXPECT_EQ(u32{1}, readNumber("4294967297"));
  EXPECT_EQ(u32{0x9ABCDEF0}, readNumber("0x123456789ABCDEF0"));
  EXPECT_EQ(kLargest, readNumber("18446744073709551615"));
  EXPECT_EQ(u32{3}, readNumber("2#100000000000000000000000000000011"));
}

TEST(NumberText, OfARadixOfMoreThan32BitsTheLow32Stay) {
  EXPECT_EQ(u32{5}, readNumber("4294967298#101"));
  EXPECT_EQ(kLargest, readNumber("4294967295#10"));
}

TEST(NumberText, WhatIsNoDecimalDigitIsADigitInNoRadix) {
  EXPECT_EQ(u32{1}, readNumber("36#1:"));
  EXPECT_EQ(u32{1}, readNumber("36#1/"));
  EXPECT_EQ(u32{1}, readNumber("36#1a"));
  EXPECT_EQ(u32{1}, readNumber("4294967295#1\x80"));
}

TEST(NumberText, NullIsZero) {
  EXPECT_EQ(u32{0}, readNumber(nullptr));
  EXPECT_EQ(u32{0}, readNumber(nullptr, 5));
}

TEST(NumberText, ReadsNothingBehindTheGivenLength) {
  EXPECT_EQ(u32{0}, readNumber("123", 0));
  EXPECT_EQ(u32{1}, readNumber("123", 1));
  EXPECT_EQ(u32{12}, readNumber("123", 2));
  EXPECT_EQ(u32{0}, readNumber("0x1F", 1));
  EXPECT_EQ(u32{0}, readNumber("0x1F", 2));
  EXPECT_EQ(u32{1}, readNumber("0x1F", 3));
  EXPECT_EQ(u32{2}, readNumber("2#11", 1));
  EXPECT_EQ(u32{0}, readNumber("2#11", 2));
  EXPECT_EQ(u32{1}, readNumber("2#11", 3));
  EXPECT_EQ(u32{0}, readNumber("  7", 2));
}

TEST(NumberText, ATerminatorWithinTheLengthEndsTheNumber) {
  EXPECT_EQ(u32{12}, readNumber("12\0"
                                "34",
                                5));
}
