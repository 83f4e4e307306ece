#include "conformance/harness.h"
#include "vexk/number.h"
#include "vexk/numberDigits.h"

namespace {

// Reads the text back in the plainest way; false when it is not the text of a number in `radix`.
bool readBack(char const* text, u32 length, u32 radix, u64& value) {
  value = 0;
  for (u32 i = 0; i < length; ++i) {
    char const digit = text[i];
    u32 worth = 0;
    if (digit >= '0' && digit <= '9') {
      worth = static_cast<u32>(digit - '0');
    } else if (digit >= 'A' && digit <= 'Z') {
      worth = static_cast<u32>(digit - 'A') + 10;
    } else {
      return false;
    }
    if (worth >= radix) return false;
    value = value * radix + worth;
  }
  return length != 0;
}

// Whether the writer's text of `value` is terminated, has no leading zero and reads back.
bool survives(u64 value, u32 radix) {
  char text[kNumberTextSize];
  u32 const length = vexNumberToText(value, radix, text);
  if (length >= kNumberTextSize || text[length] != '\0') return false;
  if (length > 1 && text[0] == '0') return false;
  u64 read = 0;
  return readBack(text, length, radix, read) && read == value;
}

// Whether digits that are written backwards are those of vexNumberToText, and nothing else changes.
template <class tWrite>
bool isSameBackwards(u64 value, u32 radix, tWrite write) {
  constexpr char kUntouched = '#';
  char text[kNumberTextSize + 1];
  for (char& character : text) character = kUntouched;
  char* const end = text + kNumberTextSize;
  char* const begin = write(value, end);
  char wanted[kNumberTextSize];
  u32 const length = vexNumberToText(value, radix, wanted);
  bool isSame = end - begin == static_cast<i64>(length) && *end == kUntouched;
  for (u32 i = 0; isSame && i < length; ++i) isSame = begin[i] == wanted[i];
  return isSame && (begin == text || begin[-1] == kUntouched);
}

bool isSameBackwards(u64 value) {
  auto const writeHexadecimal = [](u64 number, char* end) {
    return vexWriteHexadecimal(number, end);
  };
  return isSameBackwards(value, 10, vexWriteDecimal) &&
         isSameBackwards(value, 16, writeHexadecimal);
}

}  // namespace

TEST(VexkNumber, WritesUpperCaseDigits) {
  char text[kNumberTextSize];
  EXPECT_EQ(u32{8}, vexNumberToText(0xDEADBEEF, 16, text));
  EXPECT_STREQ("DEADBEEF", text);
  vexNumberToText(35, 36, text);
  EXPECT_STREQ("Z", text);
}

TEST(VexkNumber, WritesZeroAsOneDigitInEveryRadix) {
  for (u32 radix = kNumberRadixLeast; radix <= kNumberRadixMost; ++radix) {
    char text[kNumberTextSize];
    EXPECT_EQ(u32{1}, vexNumberToText(0, radix, text));
    EXPECT_STREQ("0", text);
  }
}

TEST(VexkNumber, WritesTheLargestValue) {
  char text[kNumberTextSize];
  EXPECT_EQ(u32{20}, vexNumberToText(UINT64_MAX, 10, text));
  EXPECT_STREQ("18446744073709551615", text);
  EXPECT_EQ(u32{16}, vexNumberToText(UINT64_MAX, 16, text));
  EXPECT_STREQ("FFFFFFFFFFFFFFFF", text);
  EXPECT_EQ(u32{22}, vexNumberToText(UINT64_MAX, 8, text));
  EXPECT_STREQ("1777777777777777777777", text);
  EXPECT_EQ(u32{13}, vexNumberToText(UINT64_MAX, 36, text));
  EXPECT_STREQ("3W5E11264SGSF", text);
}

TEST(VexkNumber, TheLongestTextFillsTheBuffer) {
  char text[kNumberTextSize];
  u32 const length = vexNumberToText(UINT64_MAX, 2, text);
  EXPECT_EQ(kNumberTextSize - 1, length);
  bool allOnes = true;
  for (u32 i = 0; i < length; ++i) allOnes = allOnes && text[i] == '1';
  EXPECT_TRUE(allOnes);
  EXPECT_EQ('\0', text[length]);
}

TEST(VexkNumber, EveryRadixReadsBackAtPowersAndTheirNeighbours) {
  for (u32 radix = kNumberRadixLeast; radix <= kNumberRadixMost; ++radix) {
    u64 power = 1;
    for (;;) {
      EXPECT_TRUE(survives(power - 1, radix));
      EXPECT_TRUE(survives(power, radix));
      EXPECT_TRUE(survives(power + 1, radix));
      if (power > UINT64_MAX / radix) break;
      power *= radix;
    }
    EXPECT_TRUE(survives(UINT64_MAX, radix));
    EXPECT_TRUE(survives(UINT64_MAX - 1, radix));
  }
}

TEST(VexkNumber, EveryRadixReadsBackScatteredValues) {
  for (u32 radix = kNumberRadixLeast; radix <= kNumberRadixMost; ++radix) {
    u64 value = 0x9E3779B97F4A7C15;
    for (u32 i = 0; i < 200; ++i) {
      value = value * 6364136223846793005 + 1442695040888963407;
      EXPECT_TRUE(survives(value >> (i % 64), radix));
    }
  }
}

TEST(VexkNumber, ARadixOutOfRangeCountsAsTen) {
  u32 const radices[] = {0, 1, 37, 0x80000000, 0xFFFFFFFF};
  for (u32 radix : radices) {
    char text[kNumberTextSize];
    EXPECT_EQ(u32{3}, vexNumberToText(255, radix, text));
    EXPECT_STREQ("255", text);
  }
}

TEST(VexkNumber, WritesNothingBehindTheTerminator) {
  char text[kNumberTextSize];
  for (char& character : text) character = '?';
  EXPECT_EQ(u32{2}, vexNumberToText(42, 10, text));
  EXPECT_EQ('\0', text[2]);
  bool untouched = true;
  for (u32 i = 3; i < kNumberTextSize; ++i) untouched = untouched && text[i] == '?';
  EXPECT_TRUE(untouched);
}

TEST(VexkNumber, DigitsThatAreWrittenBackwardsAreTheSame) {
  for (u64 value = 0; value < 70'000; ++value) EXPECT_TRUE(isSameBackwards(value));
  for (u64 power = 1; power != 0; power *= 2) {
    EXPECT_TRUE(isSameBackwards(power - 1));
    EXPECT_TRUE(isSameBackwards(power));
  }
  u64 power = 1;
  for (u32 digits = 1; digits < 20; ++digits) {
    power *= 10;
    EXPECT_TRUE(isSameBackwards(power - 1));
    EXPECT_TRUE(isSameBackwards(power));
  }
  EXPECT_TRUE(isSameBackwards(UINT64_MAX));
}

TEST(VexkNumber, EveryByteHasTwoDigits) {
  for (u32 byte = 0; byte <= 0xFF; ++byte) {
    char text[] = "--";
    vexWriteHexByte(static_cast<u8>(byte), text);
    u64 value = 0;
    EXPECT_TRUE(readBack(text, 2, 16, value));
    EXPECT_EQ(u64{byte}, value);
  }
}
