#include "trace/tBlockText.h"

#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "vexk/number.h"

namespace nOXDIAG100 {

void tBlockText::endEntry(tTrace& line, void const* object) const {
  if (blockName != nullptr) line.put(blockName).put("; ");
  if (object != nullptr) line.put("this=").put(object).put("; ");
  putStatus(line, " ");
  line.put("{").endl();
}

void tBlockText::endExit(tTrace& line) const {
  line.put("} ");
  putStatus(line, "; ");
  line.put(blockName).endl();
}

void tBlockText::putStatus(tTrace& line, char const* end) const {
  if (legacyStatus != nullptr) line.put("tStatus=").put(*legacyStatus, kRadixDecimal).put(end);
  if (statusObject != nullptr) {
    line.put("tStatus2 code=").put(statusObject->getCode(), kRadixDecimal).put(end);
  }
}

}  // namespace nOXDIAG100
