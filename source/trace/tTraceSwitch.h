#pragma once

#include "oxdiagk/tLineShape.h"

namespace nOXDIAG100 {

// A switch of a trace stream as options know it.
struct tTraceSwitch {
  char const* name;  // of the option, without its dashes, and of the field in the legend
  tLineShape::tSwitch which;
  i32 filterField;  // what a filter term behind the option is about, or tTraceFilter::kNoField
  bool isField;     // of the prefix
};

#define OXDIAG_TRACE_FIELD(Name, name, place, atStart, word, field) \
  {#word, tLineShape::k##Name, field, true},
#define OXDIAG_TRACE_OTHER(Name, name, place, atStart, word, field) \
  {#word, tLineShape::k##Name, field, false},
// In the order in which inquire writes them; the mutex is the last.
inline constexpr tTraceSwitch kTraceSwitches[] = {
    OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_FIELD, OXDIAG_TRACE_OTHER, OXDIAG_TRACE_OTHER)};
#undef OXDIAG_TRACE_OTHER
#undef OXDIAG_TRACE_FIELD

}  // namespace nOXDIAG100
