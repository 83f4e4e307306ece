// Counted wide text.

#include <gtest/gtest.h>

#include <vector>

#include "ntos/string.h"

namespace {

constexpr wchar_t kUntouched = L'#';

struct Target {
  explicit Target(u16 maximumBytes) : string{6, maximumBytes, units} {
    for (wchar_t& unit : units) unit = kUntouched;
  }

  wchar_t units[8];
  UNICODE_STRING string;
};

UNICODE_STRING counted(wchar_t const* text) {
  UNICODE_STRING string;
  RtlInitUnicodeString(&string, text);
  return string;
}

TEST(UnicodeString, ItStandsForATerminatedText) {
  wchar_t const text[] = L"rack";
  UNICODE_STRING const string = counted(text);
  EXPECT_EQ(string.Length, 8);
  EXPECT_EQ(string.MaximumLength, 10);
  EXPECT_EQ(static_cast<void const*>(string.Buffer), static_cast<void const*>(text));
}

TEST(UnicodeString, NullMakesAnEmptyOneWithoutBuffer) {
  UNICODE_STRING const string = counted(nullptr);
  EXPECT_EQ(string.Length, 0);
  EXPECT_EQ(string.MaximumLength, 0);
  EXPECT_TRUE(string.Buffer == nullptr);
}

TEST(UnicodeString, AnEmptyTextHasRoomForItsTerminator) {
  UNICODE_STRING const string = counted(L"");
  EXPECT_EQ(string.Length, 0);
  EXPECT_EQ(string.MaximumLength, 2);
}

TEST(UnicodeString, AVeryLongTextIsCut) {
  for (size_t units : {32765u, 32766u, 32767u, 40000u}) {
    std::vector<wchar_t> text(units, L'x');
    text.push_back(0);
    UNICODE_STRING const string = counted(text.data());
    EXPECT_EQ(string.Length, units < 32766 ? units * 2 : 65532) << units << " units";
    EXPECT_EQ(string.MaximumLength, string.Length + 2) << units << " units";
  }
}

TEST(UnicodeString, ACopyIsTerminatedWhenThereIsRoom) {
  UNICODE_STRING const source = counted(L"abc");
  Target target(8);
  RtlCopyUnicodeString(&target.string, &source);
  EXPECT_EQ(target.string.Length, 6);
  EXPECT_TRUE(target.units[2] == L'c');
  EXPECT_TRUE(target.units[3] == 0);
  EXPECT_TRUE(target.units[4] == kUntouched);
}

TEST(UnicodeString, ACopyThatFitsExactlyHasNoTerminator) {
  UNICODE_STRING const source = counted(L"abc");
  Target target(6);
  RtlCopyUnicodeString(&target.string, &source);
  EXPECT_EQ(target.string.Length, 6);
  EXPECT_TRUE(target.units[3] == kUntouched);
}

TEST(UnicodeString, ACopyIsCutAtTheRoom) {
  UNICODE_STRING const source = counted(L"abc");
  Target target(4);
  RtlCopyUnicodeString(&target.string, &source);
  EXPECT_EQ(target.string.Length, 4);
  EXPECT_TRUE(target.units[1] == L'b');
  EXPECT_TRUE(target.units[2] == kUntouched);
}

TEST(UnicodeString, WithoutRoomNothingIsCopied) {
  UNICODE_STRING const source = counted(L"abc");
  Target target(0);
  RtlCopyUnicodeString(&target.string, &source);
  EXPECT_EQ(target.string.Length, 0);
  EXPECT_TRUE(target.units[0] == kUntouched);
}

TEST(UnicodeString, CopyingNothingEmptiesIt) {
  Target target(8);
  RtlCopyUnicodeString(&target.string, nullptr);
  EXPECT_EQ(target.string.Length, 0);
  EXPECT_TRUE(target.units[0] == kUntouched);
}

}  // namespace
