#include "oxdiagreport/tRawValues.h"

#include <algorithm>
#include <cstdio>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/reportText.h"
#include "translators/common/tCalendarTime.h"

using nOXDIAG100::tStatus2;
using tJson = nlohmann::ordered_json;

QELM_DEFINE_CLASS(tRawValues, "tRawValues")

namespace {

// The fraction counts 2^-64 of a second. A time that came from the kernel's units comes out as it
// was: rounded, but not up to the next second.
u32 hundredNanoseconds(tSSTimeAbsolute const& time) {
  constexpr u64 kInSecond = 10'000'000;
  constexpr u64 kHalf = u64{1} << 31;
  u64 const rounded = ((time.getFraction() >> 32) * kInSecond + kHalf) >> 32;
  return static_cast<u32>(std::min(rounded, kInSecond - 1));
}

// ISO 8601 has a sign in front of a year with more than four digits.
constexpr u64 kLastPlainYear = 9999;

std::string isoText(tSSTimeAbsolute const& time) {
  nTRANSLATORS100::tCalendarTime const calendar(time);
  char text[80];
  std::snprintf(text, sizeof(text), "%s%04llu-%02u-%02uT%02u:%02u:%02u.%07uZ",
                calendar.year > kLastPlainYear ? "+" : "",
                static_cast<unsigned long long>(calendar.year), calendar.month, calendar.day,
                calendar.hour, calendar.minute, calendar.second, hundredNanoseconds(time));
  return text;
}

}  // namespace

_STL::wstring tRawValues::keep(tJson value) const {
  values.push_back(std::move(value));
  return {};
}

_STL::wstring tRawValues::translateU32(u32 value, tStatus2&) const {
  return keep(value);
}

_STL::wstring tRawValues::translateU64(u64 const& value, tStatus2&) const {
  return keep(value);
}

_STL::wstring tRawValues::translateI32(i32 value, tStatus2&) const {
  return keep(value);
}

_STL::wstring tRawValues::translateI64(i64 const& value, tStatus2&) const {
  return keep(value);
}

_STL::wstring tRawValues::translateWideString(_STL::wstring const& value, tStatus2&) const {
  return keep(utf8Of(value));
}

_STL::wstring tRawValues::translateGUID(nQELM100::tGUID const& value, tStatus2& status) const {
  return keep(utf8Of(tTranslatorBase::translateGUID(value, status)));
}

_STL::wstring tRawValues::translateTimeAbsolute(tSSTimeAbsolute const& value, tStatus2&) const {
  return keep(isoText(value));
}

_STL::wstring tRawValues::translatePropertyID(i32 propertyID, tStatus2&) const {
  return keep({{"property", propertyID}});
}

_STL::wstring tRawValues::translateEnumValue(i32 propertyID, i32 value, tStatus2&) const {
  return keep({{"property", propertyID}, {"value", value}});
}
