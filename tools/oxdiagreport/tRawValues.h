#pragma once

#include <nlohmann/json.hpp>

#include "translators/common/tTranslatorBase.h"

// The values of a reportable as they are, for programs. It takes the place of a translator: what it
// is asked to translate it keeps.
//
//     tRawValues raw;
//     reportable.generateReport(raw, text, status);  // `text` is of no use
//     use(raw.getValues());
//
// A number is a JSON number, a text a text, a GUID a text in braces, a time a text as ISO 8601
// says, with 7 decimals of the second and Z, and + in front of a year beyond 9999; a property is
// {"property": 1}, a value of a property {"property": 5, "value": 1}. A range has its two bounds,
// an empty list nothing.
class tRawValues final : public nTRANSLATORS100::tTranslatorBase {
  QELM_DECLARE_CLASS(tRawValues, nTRANSLATORS100::tTranslatorBase)

 public:
  nlohmann::ordered_json const& getValues() const { return values; }

  _STL::wstring translateU32(u32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateU64(u64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI32(i32 value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateI64(i64 const& value, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateWideString(_STL::wstring const& value,
                                    nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateGUID(nQELM100::tGUID const& value,
                              nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateTimeAbsolute(tSSTimeAbsolute const& value,
                                      nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translatePropertyID(i32 propertyID, nOXDIAG100::tStatus2& status) const override;
  _STL::wstring translateEnumValue(i32 propertyID, i32 value,
                                   nOXDIAG100::tStatus2& status) const override;

  _STL::wstring translateEmptyContainer(nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring translateUsageType(i32, nOXDIAG100::tStatus2&) const override { return {}; }
  _STL::wstring getRangeSeparator(nOXDIAG100::tStatus2&) const override { return {}; }

 private:
  _STL::wstring keep(nlohmann::ordered_json value) const;

  // Translating is constant to its callers.
  mutable nlohmann::ordered_json values = nlohmann::ordered_json::array();
};
