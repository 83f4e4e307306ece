// Wide text into buffers of a given size, at the sizes where something changes.

#include "package/windows/wdm/boundedWideText.h"

#include "conformance/harness.h"
#include "support/tWideBuffer.h"

using namespace nOXDIAG100;

TEST(BoundedWideText, BytesTakeTextThatFits) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 10, L"ab%02d", 7), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"ab07"));
}

TEST(BoundedWideText, BytesTakeTextThatFillsThem) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 12, L"%s", L"abcde"), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"abcde"));
}

TEST(BoundedWideText, BytesCutTextThatIsOneLonger) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 10, L"%s", L"abcde"), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L"abcd"));
}

TEST(BoundedWideText, AnOddByteIsLeftAlone) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 9, L"abcde"), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L"abc"));
}

TEST(BoundedWideText, BytesForOneCharacterTakeTheTerminator) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 2, L""), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L""));
  EXPECT_EQ(formatWideBytes(buffer.text, 3, L"a"), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L""));
}

TEST(BoundedWideText, BytesForNoCharacterAreRefused) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideBytes(buffer.text, 0, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(formatWideBytes(buffer.text, 1, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(buffer.isUntouched());
}

TEST(BoundedWideText, TooManyBytesAreRefused) {
  tWideBuffer buffer;
  size_t const most = 2 * kMostWideCharacters;
  EXPECT_EQ(formatWideBytes(buffer.text, most + 2, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(formatWideBytes(buffer.text, ~size_t{0}, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(buffer.isUntouched());
  EXPECT_EQ(formatWideBytes(buffer.text, most + 1, L"a"), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"a"));
}

TEST(BoundedWideText, CharactersTakeTextThatFits) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideCharacters(buffer.text, 6, L"%d", 1234), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"1234"));
  EXPECT_EQ(formatWideCharacters(buffer.text, 5, L"%d", 1234), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"1234"));
}

TEST(BoundedWideText, CharactersCutTextThatIsOneLonger) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideCharacters(buffer.text, 4, L"%d", 1234), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L"123"));
  EXPECT_EQ(formatWideCharacters(buffer.text, 1, L"%d", 1234), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L""));
}

TEST(BoundedWideText, CharactersOutsideTheirRangeAreRefused) {
  tWideBuffer buffer;
  EXPECT_EQ(formatWideCharacters(buffer.text, 0, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(formatWideCharacters(buffer.text, kMostWideCharacters + 1, L"a"),
            STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(buffer.isUntouched());
  EXPECT_EQ(formatWideCharacters(buffer.text, kMostWideCharacters, L"a"), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"a"));
}

TEST(BoundedWideText, ACopyIsCutAsWell) {
  tWideBuffer buffer;
  EXPECT_EQ(copyWideCharacters(buffer.text, 5, L"abc"), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"abc"));
  EXPECT_EQ(copyWideCharacters(buffer.text, 4, L"xyz"), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L"xyz"));
  EXPECT_EQ(copyWideCharacters(buffer.text, 3, L"abc"), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L"ab"));
}

TEST(BoundedWideText, ACopyIntoOneCharacterIsEmpty) {
  tWideBuffer buffer;
  EXPECT_EQ(copyWideCharacters(buffer.text, 1, L"a"), STATUS_BUFFER_OVERFLOW);
  EXPECT_TRUE(buffer.holds(L""));
  EXPECT_EQ(copyWideCharacters(buffer.text, 1, L""), STATUS_SUCCESS);
  EXPECT_TRUE(buffer.holds(L""));
}

TEST(BoundedWideText, ACopyOutsideTheRangeIsRefused) {
  tWideBuffer buffer;
  EXPECT_EQ(copyWideCharacters(buffer.text, 0, L"a"), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(copyWideCharacters(buffer.text, kMostWideCharacters + 1, L"a"),
            STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(buffer.isUntouched());
}

TEST(BoundedWideText, ALengthIsCountedUpToItsLimit) {
  EXPECT_EQ(wideLength(L"abc", 4), 3u);
  EXPECT_EQ(wideLength(L"abc", 3), 3u);
  EXPECT_EQ(wideLength(L"abc", 2), 2u);
  EXPECT_EQ(wideLength(L"", 4), 0u);
}
