#include "tTestConverter.h"

#include "oxdiagk/tStatus2.h"

QELM_DEFINE_CLASS(tTestConverter, tTestConverter::kName)

constinit i32 tTestConverter::living = 0;
constinit i32 tTestConverter::made = 0;

_STL::wstring tTestConverter::convert(i32 stringID, nOXDIAG100::tStatus2& status) const {
  if (status.isError()) return _STL::wstring();
  if (stringID < 0) {
    status.setCode(kStatusUnknownString);
    return _STL::wstring();
  }
  _STL::wstring text(L"string ");
  text.push_back(static_cast<wchar_t>(L'0' + stringID % 10));
  return text;
}
