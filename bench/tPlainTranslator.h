#pragma once

#include "oxdiagk/iReportableTranslator.h"

// "item 0: 17; item 1: 17 ..."
class tPlainTranslator final : public nOXDIAG100::iReportableTranslator {
 public:
  nQELM100::tObject const* getFrameworkObject(nOXDIAG100::tStatus2&) const override {
    return nullptr;
  }
  _STL::wstring translateU32(u32 value, nOXDIAG100::tStatus2&) const override {
    return decimal(value);
  }
  _STL::wstring translateU64(u64 const&, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring translateWideString(_STL::wstring const& value,
                                    nOXDIAG100::tStatus2&) const override {
    return value;
  }
  _STL::wstring translateI32(i32 value, nOXDIAG100::tStatus2&) const override {
    return decimal(value);
  }
  _STL::wstring translateReserved(i32, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring getValueSeparator(nOXDIAG100::tStatus2&) const override {
    return _STL::wstring(L", ");
  }
  _STL::wstring translateUsageType(i32 usageType, nOXDIAG100::tStatus2&) const override {
    _STL::wstring text(L"item ");
    text.append(decimal(usageType));
    return text;
  }
  _STL::wstring getItemSeparator(nOXDIAG100::tStatus2&) const override {
    return _STL::wstring(L"; ");
  }
  _STL::wstring getListPrefix(nOXDIAG100::tStatus2&) const override { return _STL::wstring(L": "); }
  _STL::wstring getRangeSeparator(nOXDIAG100::tStatus2&) const override { return {}; }
  void applyTitle(_STL::wstring&, nOXDIAG100::tStatus2&) const override {}
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
  static _STL::wstring decimal(i64 value) {
    wchar_t digits[24];
    u32 first = 24;
    do {
      digits[--first] = static_cast<wchar_t>('0' + value % 10);
      value /= 10;
    } while (value != 0);
    return _STL::wstring(digits + first, 24 - first);
  }
};
