// The translators of the examples: what each operation answers, and how.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/dynamicCast.h"
#include "translators/common/tCalendarTime.h"
#include "translators/common/tShortText.h"
#include "translators/english/tEnglishTranslator.h"
#include "translators/german/tGermanTranslator.h"

namespace {

using namespace nTRANSLATORS100;
using nOXDIAG100::iReportableTranslatorForEmptyContainers;
using nOXDIAG100::iReportableTranslatorForI64;
using nOXDIAG100::iReportableTranslatorTimeAbsolute;
using nOXDIAG100::tStatus2;
using nQELM100::dynamicCast;
using nQELM100::tGUID;

constexpr u32 kMost32 = 0xFFFFFFFF;
constexpr u64 kMost64 = 0xFFFFFFFFFFFFFFFF;
constexpr i64 kLeast64 = static_cast<i64>(u64{1} << 63);
constexpr i32 kLeast32 = -2147483647 - 1;
constexpr i32 kNewline = 223;

constexpr tWord kUsageTypes[] = {{1, L"line"}, {-7, L"negative"}};
constexpr tWord kSlotProperties[] = {{1, L"slot"}};
constexpr tEnumWord kSlotValues[] = {{1, 7, L"seven of one"}, {2, 7, L"seven of two"}};
constexpr tVocabulary kWords(kUsageTypes, kSlotProperties, kSlotValues);

constexpr tGUID kGUID(0x7A0C5A9E, 0x31B4, 0x4D0F, {0x9B, 0x1C, 2, 0x77, 0xC1, 0, 8, 0x2E});

tSSTimeAbsolute timeOf(u64 seconds) {
  tSSTimeAbsolute time;
  time.words[2] = static_cast<u32>(seconds);
  time.words[3] = static_cast<u32>(seconds >> 32);
  return time;
}

constexpr u64 kDay = 86400;

void expectDate(u64 seconds, u64 year, u32 month, u32 day) {
  tCalendarTime const time(timeOf(seconds));
  EXPECT_EQ(time.year, year);
  EXPECT_EQ(time.month, month);
  EXPECT_EQ(time.day, day);
}

}  // namespace

TEST(Translators, KnowEverySpecialisedInterface) {
  tEnglishTranslator const translator;
  tStatus2 status;
  auto const* const object = translator.getFrameworkObject(status);
  EXPECT_TRUE(dynamicCast<iReportableTranslatorForI64>(object) != nullptr);
  EXPECT_TRUE(dynamicCast<iReportableTranslatorForEmptyContainers>(object) != nullptr);
  EXPECT_TRUE(dynamicCast<iReportableTranslatorTimeAbsolute>(object) != nullptr);
  EXPECT_TRUE(dynamicCast<tEnglishTranslator>(object) == &translator);
  EXPECT_TRUE(dynamicCast<tGermanTranslator>(object) == nullptr);
}

TEST(Translators, AreClassesWithNames) {
  i32 code = 0;
  EXPECT_STREQ(tEnglishTranslator().getClass(code).getName(),
               "nTRANSLATORS100::tEnglishTranslator");
  EXPECT_STREQ(tGermanTranslator().getClass(code).getName(), "nTRANSLATORS100::tGermanTranslator");
}

TEST(Translators, ShowIntegersAtTheEndsOfTheirRanges) {
  tEnglishTranslator const translator;
  tStatus2 status;
  EXPECT_TRUE(translator.translateU32(0, status) == L"0");
  EXPECT_TRUE(translator.translateU32(kMost32, status) == L"4294967295");
  EXPECT_TRUE(translator.translateU64(kMost64, status) == L"18446744073709551615");
  EXPECT_TRUE(translator.translateI32(kLeast32, status) == L"-2147483648");
  EXPECT_TRUE(translator.translateI32(2147483647, status) == L"2147483647");
  EXPECT_TRUE(translator.translateI64(kLeast64, status) == L"-9223372036854775808");
  EXPECT_TRUE(translator.translateI64(-(kLeast64 + 1), status) == L"9223372036854775807");
  EXPECT_TRUE(translator.translateReserved(-3, status) == L"-3");
}

TEST(Translators, ShowAGUIDAsPeopleWriteIt) {
  tStatus2 status;
  EXPECT_TRUE(tEnglishTranslator().translateGUID(kGUID, status) ==
              L"{7A0C5A9E-31B4-4D0F-9B1C-0277C100082E}");
  EXPECT_TRUE(tGermanTranslator().translateGUID(tGUID(), status) ==
              L"{00000000-0000-0000-0000-000000000000}");
}

TEST(Translators, QuoteTextAsTheirLanguagesDo) {
  tStatus2 status;
  _STL::wstring const text(L"1O");
  EXPECT_TRUE(tEnglishTranslator().translateWideString(text, status) == L"\"1O\"");
  EXPECT_TRUE(tGermanTranslator().translateWideString(text, status) ==
              L"\x201E"
              L"1O\x201C");
}

TEST(Translators, KeepNulInsideAText) {
  tStatus2 status;
  _STL::wstring const text(L"a\0b", 3);
  EXPECT_TRUE(tEnglishTranslator().translateWideString(text, status) ==
              _STL::wstring(L"\"a\0b\"", 5));
}

TEST(Translators, TakeWordsFromTheVocabulary) {
  tEnglishTranslator const translator(kWords);
  tStatus2 status;
  EXPECT_TRUE(translator.translateUsageType(1, status) == L"line");
  EXPECT_TRUE(translator.translateUsageType(-7, status) == L"negative");
  EXPECT_TRUE(translator.translatePropertyID(1, status) == L"slot");
  EXPECT_TRUE(translator.translateEnumValue(1, 7, status) == L"seven of one");
  EXPECT_TRUE(translator.translateEnumValue(2, 7, status) == L"seven of two");
}

TEST(Translators, TellByNumberWhatHasNoWord) {
  tEnglishTranslator const english(kWords);
  tGermanTranslator const german(kWords);
  tStatus2 status;
  EXPECT_TRUE(english.translateUsageType(2, status) == L"item 2");
  EXPECT_TRUE(english.translatePropertyID(2, status) == L"property 2");
  EXPECT_TRUE(english.translateEnumValue(1, -8, status) == L"value -8 of property 1");
  EXPECT_TRUE(german.translateUsageType(2, status) == L"Angabe 2");
  EXPECT_TRUE(german.translatePropertyID(2, status) == L"Eigenschaft 2");
  EXPECT_TRUE(german.translateEnumValue(1, -8, status) == L"Wert -8 der Eigenschaft 1");
}

TEST(Translators, HaveNoWordForALineBreak) {
  tStatus2 status;
  EXPECT_TRUE(tEnglishTranslator().translateUsageType(kNewline, status).empty());
  EXPECT_TRUE(tGermanTranslator(kWords).translateUsageType(kNewline, status).empty());
}

TEST(Translators, SeparateItemsAsTheyAreTold) {
  tStatus2 status;
  EXPECT_TRUE(tEnglishTranslator().getItemSeparator(status) == L"\n");
  EXPECT_TRUE(tEnglishTranslator(kWords).getItemSeparator(status) == L"\n");
  EXPECT_TRUE(tGermanTranslator(kWords, L"; ").getItemSeparator(status) == L"; ");
}

TEST(Translators, HavePunctuationBetweenValues) {
  tStatus2 status;
  tEnglishTranslator const english;
  EXPECT_TRUE(english.getListPrefix(status) == L": ");
  EXPECT_TRUE(english.getValueSeparator(status) == L", ");
  EXPECT_TRUE(english.getRangeSeparator(status) == L" to ");
  EXPECT_TRUE(english.translateEmptyContainer(status) == L"none");
  EXPECT_TRUE(tGermanTranslator().getRangeSeparator(status) == L" bis ");
  EXPECT_TRUE(tGermanTranslator().translateEmptyContainer(status) == L"nichts");
}

TEST(Translators, BeginATitleWithACapital) {
  struct tCase {
    wchar_t const* before;
    wchar_t const* after;
  };
  tCase const cases[] = {{L"line: ", L"Line: "},
                         {L"z", L"Z"},
                         {L"a", L"A"},
                         {L"Already", L"Already"},
                         {L"1 line", L"1 line"},
                         {L"", L""},
                         {L"\xFC"
                          L"ber",
                          L"\xDC"
                          L"ber"},
                         {L"\xE0", L"\xC0"},
                         {L"\xFE", L"\xDE"},
                         {L"\xF7", L"\xF7"},
                         {L"\xFF", L"\xFF"},
                         {L"`{", L"`{"},
                         {L"{", L"{"}};
  for (tCase const& one : cases) {
    _STL::wstring output(one.before);
    tStatus2 status;
    tGermanTranslator().applyTitle(output, status);
    EXPECT_TRUE(output == one.after);
  }
}

TEST(Translators, DoNothingOnAnError) {
  tEnglishTranslator const translator(kWords);
  tStatus2 status(-5);
  _STL::wstring output(L"line");
  translator.applyTitle(output, status);
  EXPECT_TRUE(output == L"line");
  EXPECT_TRUE(translator.translateU32(1, status).empty());
  EXPECT_TRUE(translator.translateWideString(output, status).empty());
  EXPECT_TRUE(translator.translateUsageType(1, status).empty());
  EXPECT_TRUE(translator.getItemSeparator(status).empty());
  EXPECT_EQ(status.getCode(), -5);
}

TEST(Translators, WriteTimesAsTheirLanguagesDo) {
  tStatus2 status;
  u64 const seconds = u64{13'355'366'820};  // 20 March 2024, 00:07
  EXPECT_TRUE(tEnglishTranslator().translateTimeAbsolute(timeOf(seconds), status) ==
              L"20 March 2024, 00:07:00 UTC");
  EXPECT_TRUE(tGermanTranslator().translateTimeAbsolute(timeOf(seconds), status) ==
              L"20. M\xE4rz 2024, 00:07:00 UTC");
}

TEST(CalendarTimes, BeginIn1601) {
  expectDate(0, 1601, 1, 1);
  expectDate(kDay - 1, 1601, 1, 1);
  expectDate(kDay, 1601, 1, 2);
}

TEST(CalendarTimes, EndTheLastSecondOfADay) {
  tCalendarTime const time(timeOf(3 * kDay - 1));
  EXPECT_EQ(time.hour, 23U);
  EXPECT_EQ(time.minute, 59U);
  EXPECT_EQ(time.second, 59U);
}

TEST(CalendarTimes, KnowLeapYears) {
  expectDate((3 * 365 + 31 + 28) * kDay, 1604, 2, 29);
  expectDate((4 * 365 + 1 - 1) * kDay, 1604, 12, 31);
  expectDate((4 * 365 + 1) * kDay, 1605, 1, 1);
}

TEST(CalendarTimes, KnowThatACenturyIsNoLeapYear) {
  u64 const year1700 = 99 * 365 + 24;  // days before it
  expectDate((year1700 + 31 + 28) * kDay, 1700, 3, 1);
  expectDate((year1700 + 364) * kDay, 1700, 12, 31);
  expectDate((year1700 + 365) * kDay, 1701, 1, 1);
}

TEST(CalendarTimes, KnowThatEveryFourthCenturyIsALeapYear) {
  u64 const year2001 = 146097;  // days before it
  expectDate((year2001 - 366 + 31 + 28) * kDay, 2000, 2, 29);
  expectDate((year2001 - 1) * kDay, 2000, 12, 31);
  expectDate(year2001 * kDay, 2001, 1, 1);
}

TEST(CalendarTimes, KnowTheEpochOfOtherSystems) {
  expectDate(u64{11'644'473'600}, 1970, 1, 1);
}

TEST(CalendarTimes, GoOnToTheEndOfTheClock) {
  tCalendarTime const time(timeOf(kMost64));
  EXPECT_EQ(time.year, u64{584'554'050'854});
  EXPECT_EQ(time.second, 15U);
}

TEST(ShortTexts, AreCutAtTheirLimit) {
  tShortText text;
  for (u32 index = 0; index < tShortText::kMaxLength - 1; ++index) text.add(L"x");
  text.addNumber(12);
  tStatus2 status;
  _STL::wstring const wide = text.toWide(status);
  ASSERT_EQ(wide.size(), size_t{tShortText::kMaxLength});
  EXPECT_EQ(wide[tShortText::kMaxLength - 1], L'1');
}

TEST(ShortTexts, FillNumbersUpWithZeros) {
  EXPECT_TRUE(_STL::wstring(tShortText().addNumber(7, 3).get()) == L"007");
  EXPECT_TRUE(_STL::wstring(tShortText().addNumber(1234, 3).get()) == L"1234");
  EXPECT_TRUE(_STL::wstring(tShortText().addNumber(0).get()) == L"0");
  EXPECT_TRUE(_STL::wstring(tShortText().addNumber(0, 0).get()).empty());
  EXPECT_TRUE(_STL::wstring(tShortText().addHexadecimal(0xAB, 4).get()) == L"00AB");
}
