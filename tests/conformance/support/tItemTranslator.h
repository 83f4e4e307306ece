#pragma once

// What tests of reports render with.

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/tStatus2.h"
#include "support/tNarrowText.h"

inline _STL::wstring decimalText(i32 value) {
  wchar_t digits[12];
  u32 first = 12;
  u32 rest = value < 0 ? 0 - static_cast<u32>(value) : static_cast<u32>(value);
  do {
    digits[--first] = static_cast<wchar_t>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (value < 0) digits[--first] = L'-';
  return _STL::wstring(digits + first, 12 - first);
}

// Makes a text remember a failure, as if memory had been exhausted.
inline void spoil(_STL::wstring& text) {
  text.reserve(_STL::wstring::max_size() + 1);
}

// A translator that makes every part of a report visible: "<10>1; <20>2" for two items with the
// usage types 10 and 20 and the numbers 1 and 2; a title puts brackets around its output.

class tItemTranslator : public nOXDIAG100::iReportableTranslator {
 public:
  static constexpr i32 kStatusFailed = -77301;

  // Answers whatever the status is, so that a report that asks on after an error is seen. Counts
  // the texts that are asked for; the one with this number, from 1, is kStatusFailed and empty, or
  // remembers exhausted memory.
  u32 failAt = 0;
  u32 cutAt = 0;
  mutable u32 calls = 0;

  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2&) const override {
    return nullptr;
  }
  _STL::wstring translateU32(u32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI32(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateUsageType(i32 usageType, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring getItemSeparator(nOXDIAG100::tStatus2& status) const override;
  void applyTitle(_STL::wstring& output, nOXDIAG100::tStatus2& status) const override;

  // Not asked for in these tests; empty.
  _STL::wstring translateU64(u64 const&, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring translateWideString(_STL::wstring const&, nOXDIAG100::tStatus2&) const override {
    return {};
  }
  _STL::wstring translateReserved(i32, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring getValueSeparator(nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring getListPrefix(nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring getRangeSeparator(nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring translateGUID(nQELM100::tGUID const&, nOXDIAG100::tStatus2&) const override {
    return {};
  }
  _STL::wstring translatePropertyID(i32, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring translateEnumValue(i32, i32, nOXDIAG100::tStatus2&) const override { return {}; }
  void reserved1() const override {}
  void reserved2() const override {}
  void reserved3() const override {}
  void reserved4() const override {}

 private:
  _STL::wstring answer(_STL::wstring text, nOXDIAG100::tStatus2& status) const;
};

inline _STL::wstring tItemTranslator::answer(_STL::wstring text,
                                             nOXDIAG100::tStatus2& status) const {
  ++calls;
  if (calls == failAt) {
    status.setCode(kStatusFailed);
    return {};
  }
  if (calls == cutAt) spoil(text);
  return text;
}

inline _STL::wstring tItemTranslator::translateU32(u32 value, nOXDIAG100::tStatus2& status) const {
  return answer(decimalText(static_cast<i32>(value)), status);
}

inline _STL::wstring tItemTranslator::translateI32(i32 value, nOXDIAG100::tStatus2& status) const {
  return answer(decimalText(value), status);
}

inline _STL::wstring tItemTranslator::translateUsageType(i32 usageType,
                                                         nOXDIAG100::tStatus2& status) const {
  _STL::wstring text(L"<");
  _STL::wstring const digits = decimalText(usageType);
  text.append(digits);
  if (digits.hasFailed()) spoil(text);
  text.append(L">");
  return answer(_STL::move(text), status);
}

inline _STL::wstring tItemTranslator::getItemSeparator(nOXDIAG100::tStatus2& status) const {
  return answer(_STL::wstring(L"; "), status);
}

inline void tItemTranslator::applyTitle(_STL::wstring& output, nOXDIAG100::tStatus2& status) const {
  if (status.isError()) return;
  output.insert(0, L"[");
  output.append(L"]");
}
