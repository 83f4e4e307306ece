// String ids in a report: with and without a class that knows their texts.

#include "conformance/harness.h"
#include "oxdiagk/iStringIDToWideStringConverter.h"
#include "support/reportableSamples.h"
#include "support/tTestConverter.h"
#include "support/tTestTranslator.h"

namespace {

using nOXDIAG100::iStringIDToWideStringConverter;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStringProxyReportable;

tStringProxyReportable proxyOf(i32 first, i32 second, char const* className) {
  tStatus2 status;
  return tStringProxyReportable(listOf(first, second), className, status);
}

// The status of a report that fails for want of a converter, and where it says that it came from.
void expectFailure(char const* className, i32 code) {
  tFullTranslator const translator;
  _STL::wstring output(L"slot");
  tStatus2 status;
  proxyOf(1, 2, className).generateReport(translator, output, status);
  EXPECT_EQ(status.getCode(), code);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tStringProxyReportable");
  EXPECT_STREQ(tNarrowText(output).get(), "<slot[>");
}

}  // namespace

TEST(ReportableConverter, WithoutALookupClassIdsAreNumbers) {
  tTestTranslator const translator;
  tReport const report(proxyOf(-1, 2, ""), translator, L"slot");
  EXPECT_STREQ(report.getText(), "<slot[>i32 -1, i32 2");
  EXPECT_EQ(report.getCode(), 0);
}

TEST(ReportableConverter, TheLookupClassTellsTheTexts) {
  tRegistration<tTestConverter> const registration;
  ASSERT_EQ(registration.getStatus(), 0);
  tTestTranslator const translator;
  tReport const report(proxyOf(1, 2, tTestConverter::kName), translator, L"slot", 61001);
  EXPECT_STREQ(report.getText(), "<slot[>string 1, string 2");
  EXPECT_EQ(report.getCode(), 61001);
}

TEST(ReportableConverter, OneConverterIsMadeForAReportAndDestroyedAgain) {
  tRegistration<tTestConverter> const registration;
  tTestTranslator const translator;
  i32 const made = tTestConverter::made;
  tReport const report(proxyOf(1, 2, tTestConverter::kName), translator);
  EXPECT_EQ(tTestConverter::made, made + 1);
  EXPECT_EQ(tTestConverter::living, 0);
}

TEST(ReportableConverter, ThatFailsEndsTheReportAndIsDestroyed) {
  tRegistration<tTestConverter> const registration;
  tTestTranslator const translator;
  tReport const report(proxyOf(1, -2, tTestConverter::kName), translator);
  EXPECT_STREQ(report.getText(), "<[>string 1, ");
  EXPECT_EQ(report.getCode(), tTestConverter::kStatusUnknownString);
  EXPECT_EQ(tTestConverter::living, 0);
}

TEST(ReportableConverter, AnEmptyListOfIdsHasTheWordsForIt) {
  tRegistration<tTestConverter> const registration;
  tFullTranslator const translator;
  tStatus2 status;
  tStringProxyReportable const proxy(_STL::vector<i32>(), tTestConverter::kName, status);
  EXPECT_STREQ(tReport(proxy, translator).getText(), "<[>none");
  EXPECT_EQ(tTestConverter::living, 0);
}

TEST(ReportableConverter, AnUnknownClassEndsTheReport) {
  expectFailure("nTESTS::tNobody", nQELM100::kStatusClassUnknown);
  expectFailure(tTestConverter::kName, nQELM100::kStatusClassUnknown);
}

TEST(ReportableConverter, ANameWithNULNamesNoClass) {
  tRegistration<tTestConverter> const registration;
  tTestTranslator const translator;
  _STL::string name(tTestConverter::kName);
  constexpr char const* kTails[] = {"", "behind"};
  for (char const* more : kTails) {
    tStatus2 status;
    _STL::string longer(name.c_str(), name.size() + 1);
    longer.append(more);
    tReport const report(tStringProxyReportable(1, longer, status), translator);
    EXPECT_EQ(report.getCode(), nQELM100::kStatusClassUnknown);
  }
  tStatus2 status;
  tReport const report(tStringProxyReportable(1, name, status), translator);
  EXPECT_EQ(report.getCode(), 0);
}

TEST(ReportableConverter, AClassWithoutInstancesEndsTheReport) {
  expectFailure("nOXDIAG100::iStringIDToWideStringConverter", nQELM100::kStatusClassAbstract);
}

TEST(ReportableConverter, AClassOfAnotherKindIsAMismatch) {
  expectFailure("nOXDIAG100::tTitleReportable", nQELM100::kStatusClassMismatch);
}

TEST(ReportableConverter, AfterAnErrorNoConverterIsMade) {
  tRegistration<tTestConverter> const registration;
  tTestTranslator translator;
  i32 const made = tTestConverter::made;
  EXPECT_STREQ(tReport(proxyOf(1, 2, tTestConverter::kName), translator, L"slot", -61007).getText(),
               "slot");
  translator.failingCall = 1;
  tReport const report(proxyOf(1, 2, tTestConverter::kName), translator);
  EXPECT_EQ(report.getCode(), tTestTranslator::kStatusTranslatorFailed);
  EXPECT_EQ(tTestConverter::made, made);
}
