#include "translators/common/tTranslatorBase.h"

#include "oxdiagk/tStatus2.h"
#include "translators/common/tShortText.h"

using _STL::wstring;
using nOXDIAG100::tStatus2;

QELM_DEFINE_INTERFACE(nTRANSLATORS100::tTranslatorBase, "nTRANSLATORS100::tTranslatorBase")

namespace nTRANSLATORS100 {

nQELM100::tObject const* tTranslatorBase::getFrameworkObject(tStatus2&) const {
  return this;
}

wstring tTranslatorBase::translateU32(u32 value, tStatus2& status) const {
  return tShortText().addNumber(value).toWide(status);
}

wstring tTranslatorBase::translateU64(u64 const& value, tStatus2& status) const {
  return tShortText().addNumber(value).toWide(status);
}

wstring tTranslatorBase::translateI32(i32 value, tStatus2& status) const {
  return tShortText().addSigned(value).toWide(status);
}

wstring tTranslatorBase::translateI64(i64 const& value, tStatus2& status) const {
  return tShortText().addSigned(value).toWide(status);
}

wstring tTranslatorBase::translateReserved(i32 value, tStatus2& status) const {
  return translateI32(value, status);
}

wstring tTranslatorBase::translateGUID(nQELM100::tGUID const& value, tStatus2& status) const {
  return tShortText().addGUID(value).toWide(status);
}

wstring tTranslatorBase::getItemSeparator(tStatus2& status) const {
  return wideText(itemSeparator, status);
}

wstring tTranslatorBase::getListPrefix(tStatus2& status) const {
  return wideText(L": ", status);
}

wstring tTranslatorBase::getValueSeparator(tStatus2& status) const {
  return wideText(L", ", status);
}

void tTranslatorBase::applyTitle(wstring& output, tStatus2& status) const {
  if (!status.isError()) beginWithCapital(output);
}

wchar_t const* tTranslatorBase::findUsageType(i32 usageType) const {
  return usageType == kLineBreak ? L"" : vocabulary.findUsageType(usageType);
}

}  // namespace nTRANSLATORS100
