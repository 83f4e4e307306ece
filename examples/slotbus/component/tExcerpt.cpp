#include "slotbus/component/tExcerpt.h"

#include "oxdiagk/tTrace.h"

namespace nSLOTBUS100 {

void tExcerpt::put(nOXDIAG100::tTrace& trace) const {
  char shown[kMaxLength];
  tTextSpan const first = text.getFirst(kMaxLength);
  for (size_t index = 0; index < first.getLength(); ++index) {
    char const character = first[index];
    shown[index] = character >= ' ' && character <= '~' ? character : '.';
  }
  trace.put("\"").put(shown, static_cast<unsigned int>(first.getLength())).put("\"");
  if (first.getLength() < text.getLength()) trace.put("...");
}

}  // namespace nSLOTBUS100
