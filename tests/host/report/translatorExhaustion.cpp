// A report when memory runs out: the status says so, and what was appended stays.

#include <cstring>

#include "slotbus/savedStatuses.h"
#include "translators/german/tGermanTranslator.h"

using nOXDIAG100::iReportableTranslator;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace {

// The last line may lack its capital or its end.
size_t lengthOfWholeLines(_STL::wstring const& text) {
  size_t length = text.size();
  while (length != 0 && text[length - 1] != L'\n') --length;
  return length;
}

void renderWithoutMemory(iReportableTranslator const& translator) {
  tStatus2 const status = statusesIn(savedBytes("1O | 1 | A | d")).at(0);
  auto const& description = *nQELM100::dynamicCast<tStatus2Description>(status.getDescription());
  tStatus2 rendering;
  _STL::wstring whole;
  description.generateReport(translator, whole, rendering);
  ASSERT_EQ(rendering.getCode(), 0);
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 failing) {
    tStatus2 own;
    _STL::wstring report;
    description.generateReport(translator, report, own);
    size_t const kept = lengthOfWholeLines(report);
    EXPECT_EQ(whole.compare(report.data(), report.size()) == 0, own.getCode() == 0) << failing;
    ASSERT_LE(kept, whole.size());
    EXPECT_EQ(std::memcmp(whole.data(), report.data(), kept * sizeof(wchar_t)), 0) << failing;
    EXPECT_TRUE(own.getCode() == kStatusOutOfMemory || report == whole) << failing;
  });
  EXPECT_GE(failures, 20U);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

}  // namespace

TEST(TranslatorExhaustion, OfTheEnglishOneIsTold) {
  renderWithoutMemory(nTRANSLATORS100::tEnglishTranslator(slotbusWords("english")));
}

TEST(TranslatorExhaustion, OfTheGermanOneIsTold) {
  renderWithoutMemory(nTRANSLATORS100::tGermanTranslator(slotbusWords("german")));
}
