#pragma once

#include "oxdiagk/iTraceable.h"

namespace nOXDIAG100 {

// A counted text of the kernel that writes itself; what asUnicodeString and asAnsiString of
// "oxdiagk/kernelValues.h" return. It refers to the text, which must live as long as it is used.
//
// Characters from the blank to the tilde are written as they are. Any other unit of UTF-16 is
// written as \u and its four digits, any other byte as \x and its two, so a terminator or a newline
// within the text neither cuts nor ends the line. No text at all is written as (null).
//
// Allocates nothing; any thread, any IRQL at which the text may be read.
class OXDIAG_API tCountedText final : public iTraceable {
 public:
  // No text at all.
  tCountedText();

  // `length`: in bytes, as the kernel counts. Null is no text at all, unless `length` is 0. Of an
  // odd length of UTF-16 the last byte is left out, and " (odd length 5)" follows.
  tCountedText(wchar_t const* units, u32 length);
  tCountedText(char const* bytes, u32 length);

  void put(tTrace& trace) const override;

 private:
  void const* text;
  u32 length;
  bool isWide;
};

}  // namespace nOXDIAG100
