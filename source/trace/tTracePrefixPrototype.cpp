#include "oxdiagk/tTrace.h"
#include "trace/tTraceSwitch.h"

namespace nOXDIAG100 {

tTrace& tTrace::putPrefixPrototype() {
  tLineShape const shape = parts.getShape();
  char const* separator = "";
  put("tTrace::putPrefixPrototype=[");
  for (tTraceSwitch const& entry : kTraceSwitches) {
    if (!entry.isField || !shape.isOn(entry.which)) continue;
    bool const isPath = entry.which == tLineShape::kFileName && shape.isOn(tLineShape::kFilePath);
    put(separator);
    put(isPath ? "filepath" : entry.name);
    separator = "--";
  }
  put("]");
  return *this;
}

}  // namespace nOXDIAG100
