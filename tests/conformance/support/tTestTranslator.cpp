#include "tTestTranslator.h"

#include "oxdiagk/tStatus2.h"
#include "qelmk/tGUID.h"

using _STL::wstring;
using nOXDIAG100::tStatus2;
using nQELM100::tGUID;
using nQELM100::tObject;

QELM_DEFINE_CLASS(tFullTranslator, "tFullTranslator")
QELM_DEFINE_CLASS(tWordsTranslator, "tWordsTranslator")

namespace {

void appendNumber(wstring& text, i64 value) {
  wchar_t digits[24];
  u32 first = 24;
  u64 rest = value < 0 ? u64{0} - static_cast<u64>(value) : static_cast<u64>(value);
  do {
    digits[--first] = static_cast<wchar_t>(L'0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (value < 0) digits[--first] = L'-';
  text.append(digits + first, 24 - first);
}

}  // namespace

bool tTestTranslator::enter(tStatus2& status) const {
  ++calls;
  if (status.isError()) {
    ++callsAfterError;
  } else if (calls == failingCall) {
    status.setCode(kStatusTranslatorFailed);
  }
  return !status.isError();
}

wstring tTestTranslator::say(wchar_t const* text, tStatus2& status) const {
  // A text that comes with a failure belongs to no report.
  enter(status);
  return wstring(text);
}

wstring tTestTranslator::sayNumber(wchar_t const* text, i64 value, tStatus2& status) const {
  wstring said = say(text, status);
  if (!status.isError()) appendNumber(said, value);
  return said;
}

tObject const* tTestTranslator::getFrameworkObject(tStatus2& status) const {
  if (failsToTellItsObject) status.setCode(kStatusUnasked);
  return nullptr;
}

wstring tTestTranslator::translateU32(u32 value, tStatus2& status) const {
  return sayNumber(L"u32 ", value, status);
}

wstring tTestTranslator::translateU64(u64 const& value, tStatus2& status) const {
  return sayNumber(L"u64 ", static_cast<i64>(value), status);
}

wstring tTestTranslator::translateWideString(wstring const& value, tStatus2& status) const {
  wstring said = say(L"text ", status);
  if (!status.isError()) said.append(value);
  return said;
}

wstring tTestTranslator::translateI32(i32 value, tStatus2& status) const {
  return sayNumber(L"i32 ", value, status);
}

wstring tTestTranslator::translateReserved(i32 value, tStatus2& status) const {
  return sayNumber(L"reserved ", value, status);
}

wstring tTestTranslator::getValueSeparator(tStatus2& status) const {
  return say(L", ", status);
}

wstring tTestTranslator::translateUsageType(i32 usageType, tStatus2& status) const {
  return sayNumber(L"usage ", usageType, status);
}

wstring tTestTranslator::getItemSeparator(tStatus2& status) const {
  return say(L"; ", status);
}

wstring tTestTranslator::getListPrefix(tStatus2& status) const {
  return say(L"[", status);
}

wstring tTestTranslator::getRangeSeparator(tStatus2& status) const {
  return say(L"..", status);
}

void tTestTranslator::applyTitle(wstring& output, tStatus2& status) const {
  if (!enter(status)) return;
  output.insert(0, L"<");
  output.append(L">");
}

wstring tTestTranslator::translateGUID(tGUID const& value, tStatus2& status) const {
  return sayNumber(L"guid ", value.data1, status);
}

wstring tTestTranslator::translatePropertyID(i32 propertyID, tStatus2& status) const {
  return propertyID < 0 ? say(L"", status) : sayNumber(L"property ", propertyID, status);
}

wstring tTestTranslator::translateEnumValue(i32 propertyID, i32 value, tStatus2& status) const {
  if (value < 0) return say(L"", status);
  wstring said = sayNumber(L"property ", propertyID, status);
  said.append(L" is ");
  appendNumber(said, value);
  return said;
}

tObject const* tFullTranslator::getFrameworkObject(tStatus2& status) const {
  tTestTranslator::getFrameworkObject(status);
  return this;
}

wstring tFullTranslator::translateI64(i64 const& value, tStatus2& status) const {
  return sayNumber(L"i64 ", value, status);
}

wstring tFullTranslator::translateEmptyContainer(tStatus2& status) const {
  return say(L"none", status);
}

wstring tFullTranslator::translateTimeAbsolute(tSSTimeAbsolute const& value,
                                               tStatus2& status) const {
  return sayNumber(L"time ", static_cast<i64>(value.getSeconds()), status);
}

tObject const* tWordsTranslator::getFrameworkObject(tStatus2& status) const {
  tTestTranslator::getFrameworkObject(status);
  return this;
}

wstring tWordsTranslator::translateEmptyContainer(tStatus2& status) const {
  return say(L"none", status);
}

namespace {

wstring reportOf(nOXDIAG100::iVariantReportable const& reportable,
                 tTestTranslator const& translator, wchar_t const* before, i32& code) {
  wstring output(before);
  tStatus2 status(code);
  reportable.generateReport(translator, output, status);
  code = status.getCode();
  return output;
}

}  // namespace

tReport::tReport(nOXDIAG100::iVariantReportable const& reportable,
                 tTestTranslator const& translator, wchar_t const* before, i32 codeBefore)
    : code(codeBefore), text(reportOf(reportable, translator, before, code)) {
}
