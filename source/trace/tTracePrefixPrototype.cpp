#include "oxdiagk/tTrace.h"
#include "trace/tTraceSwitch.h"

namespace nOXDIAG100 {

tTrace& tTrace::putPrefixPrototype() {
  tLineShape const shape = parts.getShape();
  char const* separator = "";
  append("tTrace::putPrefixPrototype=[");
  for (tTraceSwitch const& entry : kTraceSwitches) {
    if (!entry.isField || !shape.isOn(entry.which)) continue;
    bool const isPath = entry.which == tLineShape::kFileName && shape.isOn(tLineShape::kFilePath);
    append(separator);
    append(isPath ? "filepath" : entry.name);
    separator = "--";
  }
  append("]");
  return *this;
}

}  // namespace nOXDIAG100
