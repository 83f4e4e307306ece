#include "slotbus/component/tExcerpt.h"

#include "oxdiagk/tTrace.h"

namespace nSLOTBUS100 {

void tExcerpt::put(nOXDIAG100::tTrace& trace) const {
  char shown[kMaxLength];
  tTextSpan const first = text.getFirst(kMaxLength);
  for (size_t index = 0; index < first.getLength(); ++index) shown[index] = getShown(index);
  trace.put("\"").put(shown, static_cast<unsigned int>(first.getLength())).put("\"");
  if (first.getLength() < text.getLength()) trace.put("...");
}

_STL::wstring tExcerpt::getWide() const {
  _STL::wstring wide;
  tTextSpan const first = text.getFirst(kMaxLength);
  for (size_t index = 0; index < first.getLength(); ++index) {
    wide.push_back(static_cast<wchar_t>(getShown(index)));
  }
  if (first.getLength() < text.getLength()) wide.append(L"...");
  return wide;
}

char tExcerpt::getShown(size_t index) const {
  return text[index] >= ' ' && text[index] <= '~' ? text[index] : '.';
}

}  // namespace nSLOTBUS100
