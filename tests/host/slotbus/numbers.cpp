#include <gtest/gtest.h>

#include <string>

#include "slotbus/component/number.h"

using nSLOTBUS100::readNumber;
using nSLOTBUS100::tNumberResult;
using nSLOTBUS100::tTextSpan;

namespace {

u64 const kUntouched = 4711;

struct tRead {
  tNumberResult result;
  u64 value;
};

tRead read(std::string const& text) {
  tRead done{tNumberResult::kDone, kUntouched};
  done.result = readNumber(tTextSpan(text.data(), text.size()), done.value);
  return done;
}

void expectNumber(std::string const& text, u64 value) {
  tRead const done = read(text);
  EXPECT_EQ(done.result, tNumberResult::kDone) << text;
  EXPECT_EQ(done.value, value) << text;
}

void expectRefusal(std::string const& text, tNumberResult result) {
  tRead const done = read(text);
  EXPECT_EQ(done.result, result) << text;
  EXPECT_EQ(done.value, kUntouched) << text;
}

}  // namespace

TEST(SlotbusNumber, DecimalDigitsAreRead) {
  expectNumber("0", 0);
  expectNumber("42", 42);
  expectNumber("4100213", 4100213);
}

TEST(SlotbusNumber, LeadingZerosDoNotMakeItOctal) {
  expectNumber("0042", 42);
}

TEST(SlotbusNumber, HexadecimalDigitsOfBothCasesAreRead) {
  expectNumber("0x3E9a21", 0x3E9A21);
  expectNumber("0Xff", 255);
}

TEST(SlotbusNumber, TheLargest64BitNumberIsRead) {
  expectNumber("18446744073709551615", UINT64_MAX);
  expectNumber("0xFFFFFFFFFFFFFFFF", UINT64_MAX);
  expectNumber("0x00FFFFFFFFFFFFFFFF", UINT64_MAX);
}

TEST(SlotbusNumber, OneMoreThanTheLargestIsTooLarge) {
  expectRefusal("18446744073709551616", tNumberResult::kTooLarge);
  expectRefusal("0x10000000000000000", tNumberResult::kTooLarge);
  expectRefusal("99999999999999999999999999", tNumberResult::kTooLarge);
}

TEST(SlotbusNumber, AnOverlongTextWithAStrangeCharacterIsNoNumber) {
  expectRefusal("99999999999999999999999999x", tNumberResult::kNotANumber);
}

TEST(SlotbusNumber, EmptyTextIsNoNumber) {
  expectRefusal("", tNumberResult::kNotANumber);
}

TEST(SlotbusNumber, ThePrefixAloneIsNoNumber) {
  expectRefusal("0x", tNumberResult::kNotANumber);
}

TEST(SlotbusNumber, SignsBlanksAndLettersAreNoDigits) {
  for (char const* text :
       {"-1", "+1", " 1", "1 ", "1O", "12a", "0xG", "0x-1", "1.5", "x10", "/", ":"}) {
    expectRefusal(text, tNumberResult::kNotANumber);
  }
}
