#include "translators/common/tShortText.h"

#define OXDIAG_COMPONENT "translators"

#include "oxdiagk/statusMacros.h"

using nOXDIAG100::tStatus2;

namespace nTRANSLATORS100 {
namespace {

constexpr wchar_t kCaseDistance = L'a' - L'A';
constexpr wchar_t kDivisionSign = 0xF7;  // stands among the small letters

_STL::wstring checked(_STL::wstring&& text, bool isComplete, tStatus2& status) {
  if (isComplete && !text.hasFailed()) return _STL::move(text);
  OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  return _STL::wstring();
}

bool isSmallLetter(wchar_t character) {
  bool const isAccented = character >= 0xE0 && character <= 0xFE && character != kDivisionSign;
  return isAccented || (character >= L'a' && character <= L'z');
}

}  // namespace

tShortText& tShortText::add(wchar_t const* more) {
  for (; *more != L'\0'; ++more) addCharacter(*more);
  return *this;
}

tShortText& tShortText::addNumber(u64 value, u32 width) {
  return addDigits(value, 10, width);
}

tShortText& tShortText::addSigned(i64 value) {
  u64 const magnitude = value < 0 ? 0 - static_cast<u64>(value) : static_cast<u64>(value);
  if (value < 0) addCharacter(L'-');
  return addNumber(magnitude);
}

tShortText& tShortText::addHexadecimal(u64 value, u32 width) {
  return addDigits(value, 16, width);
}

tShortText& tShortText::addGUID(nQELM100::tGUID const& value) {
  add(L"{").addHexadecimal(value.data1, 8);
  add(L"-").addHexadecimal(value.data2, 4);
  add(L"-").addHexadecimal(value.data3, 4).add(L"-");
  for (u32 index = 0; index < 8; ++index) {
    if (index == 2) add(L"-");
    addHexadecimal(value.data4[index], 2);
  }
  return add(L"}");
}

_STL::wstring tShortText::toWide(tStatus2& status) const {
  return wideText(text, status);
}

tShortText& tShortText::addDigits(u64 value, u32 radix, u32 width) {
  constexpr u32 kMaxDigits = 20;
  wchar_t digits[kMaxDigits];
  u32 count = 0;
  for (; value != 0 || (count < width && count < kMaxDigits); value /= radix) {
    digits[count++] = L"0123456789ABCDEF"[value % radix];
  }
  while (count != 0) addCharacter(digits[--count]);
  return *this;
}

void tShortText::addCharacter(wchar_t character) {
  if (length < kMaxLength) text[length++] = character;
}

_STL::wstring wideText(wchar_t const* text, tStatus2& status) {
  if (status.isError()) return _STL::wstring();
  return checked(_STL::wstring(text), true, status);
}

_STL::wstring quotedText(wchar_t const* opening, _STL::wstring const& value, wchar_t const* closing,
                         tStatus2& status) {
  if (status.isError()) return _STL::wstring();
  _STL::wstring text(opening);
  bool const isComplete = text.append(value) && text.append(closing);
  return checked(_STL::move(text), isComplete, status);
}

void beginWithCapital(_STL::wstring& output) {
  if (output.empty() || !isSmallLetter(output[0])) return;
  output[0] = static_cast<wchar_t>(output[0] - kCaseDistance);
}

}  // namespace nTRANSLATORS100
