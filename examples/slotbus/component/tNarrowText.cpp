#include "slotbus/component/tNarrowText.h"

namespace nSLOTBUS100 {

tNarrowText::tNarrowText(wchar_t const* wide) {
  u32 length = 0;
  while (length < kMaxLength && wide[length] != L'\0') {
    wchar_t const unit = wide[length];
    text[length] = unit < 0x80 ? static_cast<char>(unit) : '?';
    ++length;
  }
  text[length] = '\0';
}

}  // namespace nSLOTBUS100
