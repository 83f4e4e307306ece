// Whole reports: a description with every kind of value, in the words of the examples' translators.

#include "conformance/harness.h"
#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "translators/english/tEnglishTranslator.h"
#include "translators/german/tGermanTranslator.h"

namespace {

using namespace nOXDIAG100;
using namespace nTRANSLATORS100;
using nQELM100::tGUID;

constexpr i32 kHeader = 1;
constexpr i32 kValue = 2;

constexpr tWord kEnglishUsage[] = {{kHeader, L"the rack is wrong"}, {kValue, L"value"}};
constexpr tWord kGermanUsage[] = {{kHeader, L"\u00FCberpr\u00FCfen"}, {kValue, L"Wert"}};
constexpr tWord kProperties[] = {{1, L"slot"}};
constexpr tEnumWord kEnumValues[] = {{1, 7, L"seven"}};
constexpr tVocabulary kEnglish(kEnglishUsage, kProperties, kEnumValues);
constexpr tVocabulary kGerman(kGermanUsage, kProperties, kEnumValues);

// A description on the stack, with one status for all that is done with it.
struct tSubject {
  tStatus2 status;
  tStatus2Description description{status};

  template <class tReportable, class... tValues>
  void add(tValues const&... values) {
    tReportable const reportable(values..., status);
    description.addReportItem(kValue, reportable, status);
  }

  _STL::wstring render(iReportableTranslator const& translator) {
    _STL::wstring report;
    description.generateReport(translator, report, status);
    EXPECT_EQ(status.getCode(), 0);
    return report;
  }
};

_STL::vector<i32> listOf(i32 first, i32 second) {
  _STL::vector<i32> list;
  EXPECT_TRUE(list.push_back(first) && list.push_back(second));
  return list;
}

}  // namespace

TEST(TranslatedReport, HasAHeaderALineBreakAndValues) {
  tSubject subject;
  subject.description.addHeader(kHeader, subject.status);
  subject.description.addNewline(subject.status);
  subject.add<tIntrinsicTypeReportable<u32>>(17U);
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) == L"The rack is wrong\n\nValue: 17");
  EXPECT_TRUE(subject.render(tGermanTranslator(kGerman)) == L"\u00DCberpr\u00FCfen\n\nWert: 17");
}

TEST(TranslatedReport, TellsEveryKindOfNumberAndText) {
  tSubject subject;
  subject.add<tIntrinsicTypeReportable<i32>>(listOf(-1, 2));
  subject.add<tIntrinsicTypeReportable<i64>>(i64{-4294967298});
  subject.add<tIntrinsicTypeReportable<u64>>(u64{4294967298});
  subject.add<tIntrinsicTypeReportable<_STL::wstring>>(_STL::wstring(L"1O"));
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish, L"; ")) ==
              L"Value: -1, 2; Value: -4294967298; Value: 4294967298; Value: \"1O\"");
}

TEST(TranslatedReport, TellsRanges) {
  tSubject subject;
  subject.add<tBoundedRangeReportable<u32>>(1U, 99U);
  subject.add<tBoundedRangeReportable<i64>>(i64{-5}, i64{5});
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) == L"Value: 1 to 99\nValue: -5 to 5");
  EXPECT_TRUE(subject.render(tGermanTranslator(kGerman)) == L"Wert: 1 bis 99\nWert: -5 bis 5");
}

TEST(TranslatedReport, TellsProperties) {
  tSubject subject;
  subject.add<tPropertyIDReportable>(listOf(1, 2));
  subject.add<tEnumPropertyReportable>(1, listOf(7, 8));
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) ==
              L"Value: slot, property 2\nValue: seven, value 8 of property 1");
}

TEST(TranslatedReport, TellsIdentifiersAndTimes) {
  tSubject subject;
  subject.add<tGUIDReportable>(tGUID());
  subject.add<tSSTimeAbsoluteReportable>(tSSTimeAbsolute());
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) ==
              L"Value: {00000000-0000-0000-0000-000000000000}\n"
              L"Value: 1 January 1601, 00:00:00 UTC");
  EXPECT_TRUE(subject.render(tGermanTranslator(kGerman)) ==
              L"Wert: {00000000-0000-0000-0000-000000000000}\n"
              L"Wert: 1. Januar 1601, 00:00:00 UTC");
}

TEST(TranslatedReport, TellsThatAListIsEmpty) {
  tSubject subject;
  tIntrinsicTypeReportable<u32> const none;
  subject.description.addReportItem(kValue, none, subject.status);
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) == L"Value: none");
  EXPECT_TRUE(subject.render(tGermanTranslator(kGerman)) == L"Wert: nichts");
}

TEST(TranslatedReport, TellsANumberForATextThatNobodyLooksUp) {
  tSubject subject;
  subject.add<tStringProxyReportable>(12, _STL::string());
  EXPECT_TRUE(subject.render(tEnglishTranslator(kEnglish)) == L"Value: 12");
}

TEST(TranslatedReport, TellsByNumberWhatTheTranslatorHasNoWordsFor) {
  tSubject subject;
  subject.description.addHeader(kHeader, subject.status);
  subject.add<tPropertyIDReportable>(1);
  EXPECT_TRUE(subject.render(tEnglishTranslator()) == L"Item 1\nItem 2: property 1");
}
