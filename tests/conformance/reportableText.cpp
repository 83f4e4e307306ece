// The text of each kind of reportable. What the translator says shows which operation made it, see
// support/tTestTranslator.h.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"
#include "support/tTestTranslator.h"

namespace {

using namespace nOXDIAG100;

constexpr i64 kWide = 0x100000002;

template <class T>
tIntrinsicTypeReportable<T> valuesOf(T const& first, T const& second) {
  tStatus2 status;
  return tIntrinsicTypeReportable<T>(listOf<T>(first, second), status);
}

template <class T>
tBoundedRangeReportable<T> rangeOf(T const& lower, T const& upper) {
  tStatus2 status;
  return tBoundedRangeReportable<T>(lower, upper, status);
}

tPropertyIDReportable propertiesOf(i32 first, i32 second) {
  tStatus2 status;
  return tPropertyIDReportable(listOf(first, second), status);
}

tEnumPropertyReportable propertyValuesOf(i32 first, i32 second) {
  tStatus2 status;
  return tEnumPropertyReportable(7, listOf(first, second), status);
}

}  // namespace

TEST(ReportableText, OfATitleIsTheTitleOperation) {
  tTestTranslator const translator;
  tReport const report(tTitleReportable(), translator, L"slot");
  EXPECT_STREQ(report.getText(), "<slot>");
  EXPECT_EQ(translator.calls, u32{1});
  EXPECT_EQ(report.getCode(), 0);
}

TEST(ReportableText, OfWhiteSpaceIsNone) {
  tFullTranslator const translator;
  tReport const report(tWhiteSpaceReportable(), translator, L"slot");
  EXPECT_STREQ(report.getText(), "slot");
  EXPECT_EQ(translator.calls, u32{0});
}

TEST(ReportableText, OfNumbersIsPrefixTitleAndTheValues) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(valuesOf<i32>(-1, 2), translator).getText(), "<[>i32 -1, i32 2");
  EXPECT_STREQ(tReport(valuesOf<u32>(0xFFFFFFFF, 2), translator).getText(),
               "<[>u32 4294967295, u32 2");
  EXPECT_STREQ(tReport(valuesOf<u64>(0x100000002, 2), translator).getText(),
               "<[>u64 4294967298, u64 2");
}

TEST(ReportableText, TheTitleSeesTheWholeOutputWithThePrefix) {
  tTestTranslator const translator;
  tReport const report(valuesOf<i32>(1, 2), translator, L"slot ", kWarning);
  EXPECT_STREQ(report.getText(), "<slot [>i32 1, i32 2");
  EXPECT_EQ(report.getCode(), kWarning);
}

TEST(ReportableText, OfWideTexts) {
  tTestTranslator const translator;
  _STL::wstring const empty;
  EXPECT_STREQ(tReport(valuesOf(_STL::wstring(L"slot 12"), empty), translator).getText(),
               "<[>text slot 12, text ");
}

TEST(ReportableText, OneValueHasNoSeparator) {
  tTestTranslator const translator;
  tStatus2 status;
  tReport const report(tIntrinsicTypeReportable<u32>(u32{12}, status), translator);
  EXPECT_STREQ(report.getText(), "<[>u32 12");
}

TEST(ReportableText, SeparatorsAreOneLessThanTheValues) {
  tTestTranslator const translator;
  tStatus2 status;
  _STL::vector<u32> list = listOf<u32>(1, 2);
  list.push_back(3);
  list.push_back(3);
  EXPECT_STREQ(tReport(tIntrinsicTypeReportable<u32>(list, status), translator).getText(),
               "<[>u32 1, u32 2, u32 3, u32 3");
}

TEST(ReportableText, OfSigned64BitValuesIsTheSpecialisedInterfaces) {
  tFullTranslator const translator;
  EXPECT_STREQ(tReport(valuesOf<i64>(kWide, -kWide), translator).getText(),
               "<[>i64 4294967298, i64 -4294967298");
  EXPECT_STREQ(tReport(rangeOf<i64>(-kWide, kWide), translator).getText(),
               "<[>i64 -4294967298..i64 4294967298");
}

TEST(ReportableText, OfSigned64BitValuesWithoutTheInterfaceIsTheirLowHalf) {
  tTestTranslator const translator;
  tReport const report(valuesOf<i64>(kWide, -1), translator);
  EXPECT_STREQ(report.getText(), "<[>i32 2, i32 -1");
  EXPECT_EQ(report.getCode(), 0);
  EXPECT_STREQ(tReport(rangeOf<i64>(kWide, 0x1FFFFFFFF), translator).getText(), "<[>i32 2..i32 -1");
}

TEST(ReportableText, ATranslatorThatCannotTellItsObjectHasNoInterfaces) {
  tFullTranslator translator;
  translator.failsToTellItsObject = true;
  tReport const report(valuesOf<i64>(kWide, 1), translator);
  EXPECT_STREQ(report.getText(), "<[>i32 2, i32 1");
  EXPECT_EQ(report.getCode(), 0);
  EXPECT_STREQ(tReport(tGUIDReportable(), translator).getText(), "<[>");
}

TEST(ReportableText, OfARangeHasTheRangeSeparator) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(rangeOf<i32>(-5, 5), translator, L"slot").getText(), "<slot[>i32 -5..i32 5");
  EXPECT_STREQ(tReport(rangeOf<u32>(5, 1), translator).getText(), "<[>u32 5..u32 1");
  EXPECT_STREQ(tReport(rangeOf<u64>(0, 0x100000000), translator).getText(),
               "<[>u64 0..u64 4294967296");
}

TEST(ReportableText, OfARangeWithoutValuesIsFromZeroToZero) {
  tFullTranslator const translator;
  EXPECT_STREQ(tReport(tBoundedRangeReportable<i32>(), translator).getText(), "<[>i32 0..i32 0");
}

TEST(ReportableText, OfProperties) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(propertiesOf(1, 2), translator, L"slot ").getText(),
               "<slot [>property 1, property 2");
  EXPECT_STREQ(tReport(propertyValuesOf(1, 2), translator).getText(),
               "<[>property 7 is 1, property 7 is 2");
}

TEST(ReportableText, ALastPropertyWithoutTextLeavesTheSeparatorBeforeIt) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(propertiesOf(1, -2), translator).getText(), "<[>property 1, ");
  EXPECT_STREQ(tReport(propertyValuesOf(1, -2), translator).getText(), "<[>property 7 is 1, ");
}

TEST(ReportableText, AFirstPropertyWithoutTextIsLeftOut) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(propertiesOf(-1, 2), translator).getText(), "<[>property 2");
  EXPECT_STREQ(tReport(propertyValuesOf(-1, 2), translator).getText(), "<[>property 7 is 2");
}

TEST(ReportableText, APropertyWithoutTextInTheMiddleTakesItsSeparatorAlong) {
  tTestTranslator const translator;
  tStatus2 status;
  _STL::vector<i32> ids = listOf<i32>(1, -2);
  ids.push_back(3);
  EXPECT_STREQ(tReport(tPropertyIDReportable(ids, status), translator).getText(),
               "<[>property 1, property 3");
}

TEST(ReportableText, PropertiesThatAllHaveNoTextAppendNothing) {
  tFullTranslator const translator;
  tReport const properties(propertiesOf(-1, -2), translator, L"slot");
  EXPECT_STREQ(properties.getText(), "slot");
  EXPECT_EQ(properties.getCode(), 0);
  EXPECT_STREQ(tReport(propertyValuesOf(-1, -2), translator, L"slot").getText(), "slot");
}

TEST(ReportableText, OfIdentifiers) {
  tTestTranslator const translator;
  tStatus2 status;
  tGUIDReportable const guids(listOf(kSecondGUID, kFirstGUID), status);
  EXPECT_STREQ(tReport(guids, translator).getText(), "<[>guid 1, guid 2047629982");
}

TEST(ReportableText, OfTimesIsTheSpecialisedInterfaces) {
  tFullTranslator const translator;
  tStatus2 status;
  tSSTimeAbsoluteReportable const times(listOf(timeOf(9, 9, 12, 0), timeOf(0, 0, 3, 1)), status);
  EXPECT_STREQ(tReport(times, translator).getText(), "<[>time 12, time 4294967299");
}

TEST(ReportableText, OfTimesWithoutTheInterfaceIsNothingAtAll) {
  tTestTranslator const translator;
  tStatus2 status;
  tReport const report(tSSTimeAbsoluteReportable(timeOf(1, 2, 3, 4), status), translator, L"slot");
  EXPECT_STREQ(report.getText(), "slot");
  EXPECT_EQ(report.getCode(), 0);
  EXPECT_EQ(translator.calls, u32{0});
}

TEST(ReportableText, OfListsWithoutValuesIsTheTranslatorsWords) {
  tFullTranslator const translator;
  EXPECT_STREQ(tReport(tIntrinsicTypeReportable<i32>(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tIntrinsicTypeReportable<i64>(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tIntrinsicTypeReportable<_STL::wstring>(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tPropertyIDReportable(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tEnumPropertyReportable(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tGUIDReportable(), translator).getText(), "<[>none");
  EXPECT_STREQ(tReport(tSSTimeAbsoluteReportable(), translator, L"slot").getText(), "<slot[>none");
  EXPECT_STREQ(tReport(tStringProxyReportable(), translator).getText(), "<[>none");
}

TEST(ReportableText, OfListsWithoutValuesAndWordsIsThePrefix) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(tIntrinsicTypeReportable<i32>(), translator).getText(), "<[>");
  EXPECT_STREQ(tReport(tPropertyIDReportable(), translator).getText(), "<[>");
  EXPECT_STREQ(tReport(tEnumPropertyReportable(), translator).getText(), "<[>");
  EXPECT_STREQ(tReport(tGUIDReportable(), translator).getText(), "<[>");
  EXPECT_STREQ(tReport(tStringProxyReportable(), translator).getText(), "<[>");
}

TEST(ReportableText, OfNoTimesWithoutInterfacesIsNothing) {
  tTestTranslator const translator;
  EXPECT_STREQ(tReport(tSSTimeAbsoluteReportable(), translator, L"slot").getText(), "slot");
}

TEST(ReportableText, OfNoTimesForATranslatorWithWordsOnlyIsTheWords) {
  tWordsTranslator const translator;
  EXPECT_STREQ(tReport(tSSTimeAbsoluteReportable(), translator, L"slot").getText(), "slotnone");
}

TEST(ReportableText, OfTimesForATranslatorWithWordsOnlyIsNothing) {
  tWordsTranslator const translator;
  tStatus2 status;
  tSSTimeAbsoluteReportable const times(timeOf(1, 2, 3, 4), status);
  EXPECT_STREQ(tReport(times, translator, L"slot").getText(), "slot");
}

TEST(ReportableText, AfterAnErrorTheOutputIsUntouched) {
  visitReportables([](auto tag) {
    tFullTranslator const translator;
    tReport const report(tag.one(), translator, L"slot", tTestTranslator::kStatusUnasked);
    EXPECT_STREQ(report.getText(), "slot");
    EXPECT_EQ(report.getCode(), tTestTranslator::kStatusUnasked);
    EXPECT_EQ(translator.calls, u32{0});
    typename decltype(tag)::tReportable const withoutValues;
    EXPECT_STREQ(
        tReport(withoutValues, translator, L"slot", tTestTranslator::kStatusUnasked).getText(),
        "slot");
  });
}

TEST(ReportableText, EndsWhereTheTranslatorFails) {
  visitReportables([](auto tag) {
    tFullTranslator all;
    tReport const whole(tag.one(), all, L"slot");
    for (u32 call = 1; call <= all.calls; ++call) {
      tFullTranslator translator;
      translator.failingCall = call;
      tReport const report(tag.one(), translator, L"slot");
      EXPECT_EQ(report.getCode(), tTestTranslator::kStatusTranslatorFailed);
      EXPECT_EQ(translator.calls, call);
      EXPECT_EQ(translator.callsAfterError, u32{0});
    }
  });
}
