// Formatting into bytes.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ntos/format.h"
#include "ntos/irql.h"

namespace {

constexpr size_t kBytes = 16;
constexpr char kUntouched = '#';

class NarrowFormat : public testing::Test {
 protected:
  NarrowFormat() { std::memset(bytes, kUntouched, sizeof(bytes)); }

  i32 format(size_t count, char const* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    i32 const length = _vsnprintf(bytes, count, text, arguments);
    va_end(arguments);
    return length;
  }

  // The buffer up to the first untouched byte, a terminator as 0.
  std::string seen() const {
    std::string text(bytes, kBytes);
    text.resize(text.find(kUntouched));
    for (char& byte : text) byte = byte == '\0' ? '0' : byte;
    return text;
  }

  char bytes[kBytes];
};

}  // namespace

TEST_F(NarrowFormat, ATextWithRoomIsTerminated) {
  EXPECT_EQ(format(6, "ab%d", 12), 4);
  EXPECT_EQ(seen(), "ab120");
}

TEST_F(NarrowFormat, ATextThatFillsTheBufferIsNot) {
  EXPECT_EQ(format(4, "ab%d", 12), 4);
  EXPECT_EQ(seen(), "ab12");
}

TEST_F(NarrowFormat, ALongerTextIsCutAndFails) {
  EXPECT_EQ(format(3, "ab%d", 12), -1);
  EXPECT_EQ(seen(), "ab1");
}

TEST_F(NarrowFormat, WithoutRoomNothingIsWritten) {
  EXPECT_EQ(format(0, "a"), -1);
  EXPECT_EQ(format(0, ""), 0);
  EXPECT_EQ(seen(), "");
}

TEST_F(NarrowFormat, NarrowTextIsTheOrdinaryOne) {
  EXPECT_EQ(format(kBytes, "%s%S%c", "ab", L"cd", 'e'), 5);
  EXPECT_EQ(seen(), "abcde0");
}

TEST_F(NarrowFormat, ComesAtEveryIrql) {
  KIRQL before = 0;
  KeRaiseIrql(HIGH_LEVEL, &before);
  i32 const length = format(kBytes, "%s", "high");
  KeLowerIrql(before);
  EXPECT_EQ(length, 4);
}

TEST_F(NarrowFormat, AnUnknownConversionStopsTheProgram) {
  EXPECT_DEATH(format(kBytes, "%y", 1), "_vsnprintf was given a format");
}
