#pragma once

#include "oxdiagk/tStatus2.h"
#include "qelmk/tGUID.h"
#include "stl/string.h"

namespace nTRANSLATORS100 {

// A text of a few words and numbers, put together without memory of its own:
//
//     return tShortText().add(L"slot ").addNumber(slot).toWide(status);
//
// What does not fit into kMaxLength is cut. Any IRQL, but toWide at most DISPATCH_LEVEL.
class tShortText {
 public:
  static constexpr u32 kMaxLength = 127;  // characters

  // `more` is terminated.
  tShortText& add(wchar_t const* more);

  // Decimal digits, filled up with leading zeros to `width` digits.
  tShortText& addNumber(u64 value, u32 width = 1);
  tShortText& addSigned(i64 value);

  // Upper-case hexadecimal digits, filled up in the same way.
  tShortText& addHexadecimal(u64 value, u32 width);

  // In braces, as people write it: {7A0C5A9E-31B4-4D0F-9B1C-0277C100082E}
  tShortText& addGUID(nQELM100::tGUID const& value);

  // The text so far, always terminated.
  wchar_t const* get() const { return text; }

  // A copy in memory; without memory, and with an error in `status` on entry, an empty text.
  _STL::wstring toWide(nOXDIAG100::tStatus2& status) const;

 private:
  tShortText& addDigits(u64 value, u32 radix, u32 width);
  void addCharacter(wchar_t character);

  wchar_t text[kMaxLength + 1] = {};
  u32 length = 0;
};

// A copy of a terminated text, under the same conditions.
_STL::wstring wideText(wchar_t const* text, nOXDIAG100::tStatus2& status);

// A copy of `value` between two texts.
_STL::wstring quotedText(wchar_t const* opening, _STL::wstring const& value, wchar_t const* closing,
                         nOXDIAG100::tStatus2& status);

// Makes the first letter of `output` a capital, when it is a small letter from a to z or with an
// accent below U+00FF. Any IRQL.
void beginWithCapital(_STL::wstring& output);

}  // namespace nTRANSLATORS100
