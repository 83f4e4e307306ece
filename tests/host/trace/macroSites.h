#pragma once

// Lines and blocks as a component writes them. The line numbers of this file are in the lines.

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION kSiteVersion
#define OXDIAG_TRACE_STREAM trace
#define OXDIAG_TRACE_FILE "examples/slotbus/component/tRackReader.cpp"
#define OXDIAG_STATUS_FILE "examples/slotbus/component/tRackReader.cpp"

#include "oxdiagk/statusMacros.h"
#include "oxdiagk/traceMacros.h"

namespace macroSites {

constexpr tSSVersion kSiteVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);

inline void answer(nOXDIAG100::tTrace& trace, u32 slot) {
  OXDIAG_TRACE(120, put("slot ").put(slot, 10).put(" answered"));
}

inline void hide(nOXDIAG100::tTrace& trace, u32 slot) {
  OXDIAG_TRACE(60, put("slot ").put(slot, 10).put(" is asked"));
}

inline void format(nOXDIAG100::tTrace& trace, u32 verbosity, u32 slot) {
  OXDIAG_TRACE(verbosity, putf("slot %u: %-8s 0x%04hX", slot, "fan", slot * 771).put(", as asked"));
}

inline u32 askWithin(nOXDIAG100::tTrace& trace, u32 verbosity, u32 slot) {
  OXDIAG_TRACE(verbosity, put("asking\n").put(slot, 16));
  return slot + 1;
}

inline void traceWithin(nOXDIAG100::tTrace& trace, u32 verbosity, u32 slot) {
  OXDIAG_TRACE(110, put("slot ").put(askWithin(trace, verbosity, slot), 10).put(" of ").put(true));
}

inline void block(nOXDIAG100::tTrace& trace, u32 verbosity, u32 slot) {
  OXDIAG_BLOCK(verbosity);
  answer(trace, slot);
}

#undef OXDIAG_TRACE_FILE
#define OXDIAG_TRACE_FILE \
  "..\\rack\\a file of a name that is longer than the prefix of a line is.cpp"
#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT "rack"

inline void objectBlock(nOXDIAG100::tTrace& trace, u32 verbosity, u64 address) {
  OXDIAG_BLOCK_OBJECT(verbosity, reinterpret_cast<void const*>(address));
  OXDIAG_TRACE(verbosity, put("within"));
}

inline void statusBlock(nOXDIAG100::tTrace& trace, u32 verbosity, i32 code) {
  i32 status = 0;
  OXDIAG_BLOCK_STATUS(verbosity, nullptr, &status);
  status = code;
}

inline void detailBlock(nOXDIAG100::tTrace& trace, u32 verbosity, i32 code) {
  nOXDIAG100::tStatus2 status;
  OXDIAG_BLOCK_STATUS(verbosity, nullptr, &status);
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, code);
  OXDIAG_TRACE(verbosity, put("status: ").put(status));
}

}  // namespace macroSites
