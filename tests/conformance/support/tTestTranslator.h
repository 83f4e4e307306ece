#pragma once

// Translators whose texts show which operation made them and what it was given.

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "oxdiagk/iVariantReportable.h"
#include "qelmk/tObject.h"
#include "support/tNarrowText.h"

// A translator without any specialised interface. The list prefix is "[", the value separator ", ",
// the item separator "; ", the range separator ".."; the title operation puts the whole output into
// angle brackets. A value has its operation's name in front, as in "u32 12", and a negative
// property or value of a property has no text.
class tTestTranslator : public nOXDIAG100::iReportableTranslator {
 public:
  static constexpr i32 kStatusTranslatorFailed = -77201;
  static constexpr i32 kStatusUnasked = -77202;

  // The text operation with this number, counted from 1, fails with kStatusTranslatorFailed.
  u32 failingCall = 0;

  // That question fails with kStatusUnasked.
  bool failsToTellItsObject = false;

  // Text operations so far, and those that got a status with an error.
  mutable u32 calls = 0;
  mutable u32 callsAfterError = 0;

  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateU32(u32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateU64(u64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateWideString(_STL::wstring const& value,
                                    nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI32(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateReserved(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getValueSeparator(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateUsageType(i32 usageType, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getItemSeparator(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getListPrefix(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getRangeSeparator(nOXDIAG100::tStatus2& status) const override;
  void applyTitle(_STL::wstring& output, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateGUID(nQELM100::tGUID const& value,
                              nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translatePropertyID(i32 propertyID, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEnumValue(i32 propertyID, i32 value,
                                   nOXDIAG100::tStatus2& status) const override;
  void reserved1() const override {}
  void reserved2() const override {}
  void reserved3() const override {}
  void reserved4() const override {}

 protected:
  // Counts a text operation; whether it may go on.
  bool enter(nOXDIAG100::tStatus2& status) const;

  _STL::wstring say(wchar_t const* text, nOXDIAG100::tStatus2& status) const;
  _STL::wstring sayNumber(wchar_t const* text, i64 value, nOXDIAG100::tStatus2& status) const;
};

// The same with all specialised interfaces: "i64 12", "time 12" (the seconds), "none".
class tFullTranslator : public tTestTranslator,
                        public nOXDIAG100::iReportableTranslatorForI64,
                        public nOXDIAG100::iReportableTranslatorForEmptyContainers,
                        public nOXDIAG100::iReportableTranslatorTimeAbsolute,
                        public virtual nQELM100::tObject {
  QELM_DECLARE_CLASS(tFullTranslator, nOXDIAG100::iReportableTranslatorForI64,
                     nOXDIAG100::iReportableTranslatorForEmptyContainers,
                     nOXDIAG100::iReportableTranslatorTimeAbsolute, nQELM100::tObject)

 public:
  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI64(i64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEmptyContainer(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateTimeAbsolute(tSSTimeAbsolute const& value,
                                      nOXDIAG100::tStatus2& status) const override;
};

// The plain one with words for a list without values, and nothing else.
class tWordsTranslator : public tTestTranslator,
                         public nOXDIAG100::iReportableTranslatorForEmptyContainers,
                         public virtual nQELM100::tObject {
  QELM_DECLARE_CLASS(tWordsTranslator, nOXDIAG100::iReportableTranslatorForEmptyContainers,
                     nQELM100::tObject)

 public:
  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEmptyContainer(nOXDIAG100::tStatus2& status) const override;
};

// The report of a reportable behind the text that the output has before, with both outcomes.
class tReport {
 public:
  tReport(nOXDIAG100::iVariantReportable const& reportable, tTestTranslator const& translator,
          wchar_t const* before = L"", i32 codeBefore = 0);

  char const* getText() const { return text.get(); }
  i32 getCode() const { return code; }

 private:
  i32 code;
  tNarrowText text;
};
