#include "translators/english/tEnglishTranslator.h"

#include "oxdiagk/tStatus2.h"
#include "translators/common/tCalendarTime.h"
#include "translators/common/tShortText.h"

using _STL::wstring;
using nOXDIAG100::tStatus2;

QELM_DEFINE_CLASS(nTRANSLATORS100::tEnglishTranslator, "nTRANSLATORS100::tEnglishTranslator")

namespace nTRANSLATORS100 {
namespace {

constexpr wchar_t const* kMonths[] = {L"January",   L"February", L"March",    L"April",
                                      L"May",       L"June",     L"July",     L"August",
                                      L"September", L"October",  L"November", L"December"};

}  // namespace

wstring tEnglishTranslator::translateWideString(wstring const& value, tStatus2& status) const {
  return quotedText(L"\"", value, L"\"", status);
}

wstring tEnglishTranslator::translateTimeAbsolute(tSSTimeAbsolute const& value,
                                                  tStatus2& status) const {
  tCalendarTime const time(value);
  tShortText text;
  text.addNumber(time.day).add(L" ").add(kMonths[time.month - 1]).add(L" ").addNumber(time.year);
  text.add(L", ").addNumber(time.hour, 2).add(L":").addNumber(time.minute, 2);
  return text.add(L":").addNumber(time.second, 2).add(L" UTC").toWide(status);
}

wstring tEnglishTranslator::translateEmptyContainer(tStatus2& status) const {
  return wideText(L"none", status);
}

wstring tEnglishTranslator::translateUsageType(i32 usageType, tStatus2& status) const {
  wchar_t const* const word = findUsageType(usageType);
  if (word != nullptr) return wideText(word, status);
  return tShortText().add(L"item ").addSigned(usageType).toWide(status);
}

wstring tEnglishTranslator::translatePropertyID(i32 propertyID, tStatus2& status) const {
  wchar_t const* const word = vocabulary.findProperty(propertyID);
  if (word != nullptr) return wideText(word, status);
  return tShortText().add(L"property ").addSigned(propertyID).toWide(status);
}

wstring tEnglishTranslator::translateEnumValue(i32 propertyID, i32 value, tStatus2& status) const {
  wchar_t const* const word = vocabulary.findEnumValue(propertyID, value);
  if (word != nullptr) return wideText(word, status);
  tShortText text;
  text.add(L"value ").addSigned(value).add(L" of property ").addSigned(propertyID);
  return text.toWide(status);
}

wstring tEnglishTranslator::getRangeSeparator(tStatus2& status) const {
  return wideText(L" to ", status);
}

}  // namespace nTRANSLATORS100
