#include "oxdiagk/tSiteBlockTracer.h"

#include "trace/tBlockText.h"

namespace nOXDIAG100 {

tSiteBlockTracer::tSiteBlockTracer(tTraceSite const& site, tLineOrigin const& origin, u32 verbosity,
                                   char const* blockName, void const volatile* object,
                                   i32 const* status, tTrace& trace)
    : site(site.isSomewhere() ? &site : nullptr),
      origin(origin),
      verbosity(verbosity),
      blockName(blockName),
      legacyStatus(status),
      statusObject(nullptr),
      trace(trace) {
  writeEntry(object);
}

tSiteBlockTracer::tSiteBlockTracer(tTraceSite const& site, tLineOrigin const& origin, u32 verbosity,
                                   char const* blockName, void const volatile* object,
                                   tStatus2 const* status, tTrace& trace)
    : site(site.isSomewhere() ? &site : nullptr),
      origin(origin),
      verbosity(verbosity),
      blockName(blockName),
      legacyStatus(nullptr),
      statusObject(status),
      trace(trace) {
  writeEntry(object);
}

tSiteBlockTracer::~tSiteBlockTracer() {
  tTrace* const line = openLine(tTrace::kBlockExit);
  if (line != nullptr) tBlockText(blockName, legacyStatus, statusObject).endExit(*line);
}

void tSiteBlockTracer::writeEntry(void const volatile* object) {
  tTrace* const line = openLine(tTrace::kBlockEntry);
  if (line == nullptr) return;
  tBlockText(blockName, legacyStatus, statusObject)
      .endEntry(*line, const_cast<void const*>(object));
}

tTrace* tSiteBlockTracer::openLine(tTrace::tTraceType type) {
  return site != nullptr ? trace.openLine(*site, verbosity, type)
                         : trace.openLine(origin, verbosity, type);
}

}  // namespace nOXDIAG100
