#include "oxdiagk/tTrace.h"
#include "trace/tTracePrefix.h"

namespace nOXDIAG100 {
namespace {

// In the order of tTracePrefix::tField.
constexpr char const* kFieldNames[] = {"compname", "compver",   "linenumber", "filename",
                                       "threadid", "timestamp", "timedelta",  "verbosity"};
static_assert(sizeof(kFieldNames) / sizeof(kFieldNames[0]) == tTracePrefix::kFieldCount);

}  // namespace

tTrace& tTrace::putPrefixPrototype() {
  u32 const fields = tTracePrefix::getEnabledFields(*this);
  char const* separator = "";
  append("tTrace::putPrefixPrototype=[");
  for (u32 field = 0; field < tTracePrefix::kFieldCount; ++field) {
    if (((fields >> field) & 1) == 0) continue;
    bool const isPath = field == tTracePrefix::kFileName && filePathIsEnabled() != 0;
    append(separator);
    append(isPath ? "filepath" : kFieldNames[field]);
    separator = "--";
  }
  append("]");
  return *this;
}

}  // namespace nOXDIAG100
