#pragma once

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "qelmk/classMacros.h"
#include "translators/common/tVocabulary.h"

namespace nTRANSLATORS100 {

// What translators of several languages have in common: numbers, identifiers and punctuation, and
// the interfaces that a translator may implement besides. A language derives and has left to say
//
//     translateWideString       its quotation marks
//     translateTimeAbsolute     its dates
//     translateEmptyContainer   "none"
//     translateUsageType        the vocabulary's word, or "item 12" where it has none
//     translatePropertyID       likewise
//     translateEnumValue        likewise
//     getRangeSeparator         "to"
//
// A report is one item a line, or as the separator of items says; each item begins with a capital
// and looks like "Line: 29". Failures are kStatusOutOfMemory. Holds no memory; may be shared
// between threads. IRQL <= APC_LEVEL.
class tTranslatorBase : public nOXDIAG100::iReportableTranslator,
                        public nOXDIAG100::iReportableTranslatorForI64,
                        public nOXDIAG100::iReportableTranslatorForEmptyContainers,
                        public nOXDIAG100::iReportableTranslatorTimeAbsolute,
                        public virtual nQELM100::tObject {
  QELM_DECLARE_INTERFACE(tTranslatorBase, nOXDIAG100::iReportableTranslatorForI64,
                         nOXDIAG100::iReportableTranslatorForEmptyContainers,
                         nOXDIAG100::iReportableTranslatorTimeAbsolute, nQELM100::tObject)

 public:
  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2& status) const override;

  _STL::wstring translateU32(u32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateU64(u64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI32(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI64(i64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateReserved(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateGUID(nQELM100::tGUID const& value,
                              nOXDIAG100::tStatus2& status) const override;

  _STL::wstring getItemSeparator(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getListPrefix(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getValueSeparator(nOXDIAG100::tStatus2& status) const override;
  void applyTitle(_STL::wstring& output, nOXDIAG100::tStatus2& status) const override;

  void reserved1() const override {}
  void reserved2() const override {}
  void reserved3() const override {}
  void reserved4() const override {}

 protected:
  // Without words for a component's numbers.
  tTranslatorBase() = default;

  // `separator` stands between two items. It must stay, as the tables of the vocabulary must.
  tTranslatorBase(tVocabulary const& words, wchar_t const* separator)
      : vocabulary(words), itemSeparator(separator) {}

  // The vocabulary's word; no text, but not null, for the line break of a description, which is an
  // item of its own between two separators; null when there is none.
  wchar_t const* findUsageType(i32 usageType) const;

  tVocabulary vocabulary;

 private:
  static constexpr i32 kLineBreak = 223;  // the usage type of tStatus2Description::addNewline

  wchar_t const* itemSeparator = L"\n";
};

}  // namespace nTRANSLATORS100
