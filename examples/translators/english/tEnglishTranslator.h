#pragma once

#include "translators/common/tTranslatorBase.h"

namespace nTRANSLATORS100 {

// Renders descriptions in English:
//
//     tEnglishTranslator const translator(kRackWords);
//     _STL::wstring report;
//     description.generateReport(translator, report, status);
//
// What the vocabulary has no word for is told by its number: "property 12".
class tEnglishTranslator : public tTranslatorBase {
  QELM_DECLARE_CLASS(tEnglishTranslator, tTranslatorBase)

 public:
  tEnglishTranslator() = default;
  explicit tEnglishTranslator(tVocabulary const& words, wchar_t const* separator = L"\n")
      : tTranslatorBase(words, separator) {}

  _STL::wstring translateWideString(_STL::wstring const& value,
                                    nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateTimeAbsolute(tSSTimeAbsolute const& value,
                                      nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEmptyContainer(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateUsageType(i32 usageType, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translatePropertyID(i32 propertyID, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEnumValue(i32 propertyID, i32 value,
                                   nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getRangeSeparator(nOXDIAG100::tStatus2& status) const override;
};

}  // namespace nTRANSLATORS100
