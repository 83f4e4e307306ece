// Formatting into wide text.

#include <gtest/gtest.h>

#include <string>

#include "ntos/format.h"
#include "ntos/irql.h"

namespace {

constexpr size_t kUnits = 16;
constexpr wchar_t kUntouched = L'#';

class WideFormat : public testing::Test {
 protected:
  WideFormat() {
    for (wchar_t& unit : m_units) unit = kUntouched;
  }

  i32 format(size_t count, wchar_t const* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    i32 const length = _vsnwprintf(m_units, count, text, arguments);
    va_end(arguments);
    return length;
  }

  // The buffer up to the first untouched unit, a terminator as 0.
  std::string seen() const {
    std::string text;
    for (wchar_t unit : m_units) {
      if (unit == kUntouched) break;
      text += unit == 0 ? '0' : static_cast<char>(unit);
    }
    return text;
  }

  wchar_t m_units[kUnits];
};

TEST_F(WideFormat, ATextWithRoomIsTerminated) {
  EXPECT_EQ(format(6, L"ab%d", 12), 4);
  EXPECT_EQ(seen(), "ab120");
}

TEST_F(WideFormat, ATextThatFillsTheBufferIsNot) {
  EXPECT_EQ(format(4, L"ab%d", 12), 4);
  EXPECT_EQ(seen(), "ab12");
}

TEST_F(WideFormat, ALongerTextIsCutAndFails) {
  EXPECT_EQ(format(3, L"ab%d", 12), -1);
  EXPECT_EQ(seen(), "ab1");
}

TEST_F(WideFormat, WithoutRoomNothingIsWritten) {
  EXPECT_EQ(format(0, L"a"), -1);
  EXPECT_EQ(format(0, L""), 0);
  EXPECT_EQ(seen(), "");
}

TEST_F(WideFormat, TextIsWideUnlessSaidOtherwise) {
  EXPECT_EQ(format(kUnits, L"%s%S%hs%ws%c%C", L"a", "b", "c", L"d", L'e', 'f'), 6);
  EXPECT_EQ(seen(), "abcdef0");
}

TEST_F(WideFormat, BytesBecomeUnitsOfTheSameValue) {
  EXPECT_EQ(format(kUnits, L"%hs%c", "\xE4", 0x20AC), 2);
  EXPECT_EQ(static_cast<u16>(m_units[0]), 0xE4);
  EXPECT_EQ(static_cast<u16>(m_units[1]), 0x20AC);
}

TEST_F(WideFormat, ALetterOutsideAsciiIsNoConversion) {
  EXPECT_DEATH(format(kUnits, L"%\u0164", 1), "_vsnwprintf was given a format");
}

TEST_F(WideFormat, ItIsForPassiveLevel) {
  KIRQL previous;
  KeRaiseIrql(APC_LEVEL, &previous);
  EXPECT_DEATH(format(kUnits, L"a"), "_vsnwprintf was called at IRQL 1 \\(APC_LEVEL\\)");
  KeLowerIrql(previous);
}

}  // namespace
