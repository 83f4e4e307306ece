#pragma once

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

class tStatus2;

// What tBlockTracer does, for the macros of "oxdiagk/traceMacros.h": its lines are of a tTraceSite,
// so that their prefixes are copied. Lifetimes, IRQL and threads are those of tBlockTracer.
class OXDIAG_API tSiteBlockTracer {
 public:
  // `site`: a constant, or the record of nowhere; then `origin` says where the block is, and else
  // the same as the site. `object`, `status`: as of tBlockTracer.
  tSiteBlockTracer(tTraceSite const& site, tLineOrigin const& origin, u32 verbosity,
                   char const* blockName, void const volatile* object, i32 const* status,
                   tTrace& trace);
  tSiteBlockTracer(tTraceSite const& site, tLineOrigin const& origin, u32 verbosity,
                   char const* blockName, void const volatile* object, tStatus2 const* status,
                   tTrace& trace);

  // Writes the exit line.
  ~tSiteBlockTracer();

  tSiteBlockTracer(tSiteBlockTracer const&) = delete;
  tSiteBlockTracer& operator=(tSiteBlockTracer const&) = delete;

 private:
  void writeEntry(void const volatile* object);
  tTrace* openLine(tTrace::tTraceType type);

  tTraceSite const* const site;
  tLineOrigin const origin;
  u32 const verbosity;
  char const* const blockName;
  i32 const* const legacyStatus;
  tStatus2 const* const statusObject;
  tTrace& trace;
};

}  // namespace nOXDIAG100
