#include "translators/german/tGermanTranslator.h"

#include "oxdiagk/tStatus2.h"
#include "translators/common/tCalendarTime.h"
#include "translators/common/tShortText.h"

using _STL::wstring;
using nOXDIAG100::tStatus2;

QELM_DEFINE_CLASS(nTRANSLATORS100::tGermanTranslator, "nTRANSLATORS100::tGermanTranslator")

namespace nTRANSLATORS100 {
namespace {

constexpr wchar_t const* kMonths[] = {L"Januar",    L"Februar", L"M\xE4rz",  L"April",
                                      L"Mai",       L"Juni",    L"Juli",     L"August",
                                      L"September", L"Oktober", L"November", L"Dezember"};

}  // namespace

wstring tGermanTranslator::translateWideString(wstring const& value, tStatus2& status) const {
  return quotedText(L"\x201E", value, L"\x201C", status);
}

wstring tGermanTranslator::translateTimeAbsolute(tSSTimeAbsolute const& value,
                                                 tStatus2& status) const {
  tCalendarTime const time(value);
  tShortText text;
  text.addNumber(time.day).add(L". ").add(kMonths[time.month - 1]).add(L" ").addNumber(time.year);
  text.add(L", ").addNumber(time.hour, 2).add(L":").addNumber(time.minute, 2);
  return text.add(L":").addNumber(time.second, 2).add(L" UTC").toWide(status);
}

wstring tGermanTranslator::translateEmptyContainer(tStatus2& status) const {
  return wideText(L"nichts", status);
}

wstring tGermanTranslator::translateUsageType(i32 usageType, tStatus2& status) const {
  wchar_t const* const word = findUsageType(usageType);
  if (word != nullptr) return wideText(word, status);
  return tShortText().add(L"Angabe ").addSigned(usageType).toWide(status);
}

wstring tGermanTranslator::translatePropertyID(i32 propertyID, tStatus2& status) const {
  wchar_t const* const word = vocabulary.findProperty(propertyID);
  if (word != nullptr) return wideText(word, status);
  return tShortText().add(L"Eigenschaft ").addSigned(propertyID).toWide(status);
}

wstring tGermanTranslator::translateEnumValue(i32 propertyID, i32 value, tStatus2& status) const {
  wchar_t const* const word = vocabulary.findEnumValue(propertyID, value);
  if (word != nullptr) return wideText(word, status);
  tShortText text;
  text.add(L"Wert ").addSigned(value).add(L" der Eigenschaft ").addSigned(propertyID);
  return text.toWide(status);
}

wstring tGermanTranslator::getRangeSeparator(tStatus2& status) const {
  return wideText(L" bis ", status);
}

}  // namespace nTRANSLATORS100
