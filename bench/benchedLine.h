#pragma once

// The line that is measured, wherever it is: in benchmarks, in paths with a budget, in a driver;
// and how its stream is set up.

#include "tBenchStream.h"

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION kBenchedVersion
#define OXDIAG_TRACE_STREAM trace
#define OXDIAG_TRACE_FILE "examples/slotbus/component/tRackReader.cpp"

#include "oxdiagk/traceMacros.h"

inline constexpr tSSVersion kBenchedVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);
constexpr u32 kShown = 120;
constexpr u32 kHidden = 60;
constexpr u32 kSlot = 17;

inline void openByCall(nOXDIAG100::tTrace& trace, u32 verbosity) {
  trace.putPrefix(OXDIAG_COMPONENT, OXDIAG_COMPONENT_VERSION, 118, OXDIAG_TRACE_FILE, verbosity,
                  nOXDIAG100::tTrace::kTraceLine);
}

inline void putByCalls(nOXDIAG100::tTrace& trace, u32 verbosity, u32 slot) {
  openByCall(trace, verbosity);
  trace.put("slot ").put(slot, 10).put(" answered").endl();
}

// Each has a type of its own, so that it is compiled into the loop that it is given to, as a line
// is into a component.
inline constexpr auto showByMacro = [](nOXDIAG100::tTrace& trace, u32 slot) {
  OXDIAG_TRACE(kShown, put("slot ").put(slot, 10).put(" answered"));
};
inline constexpr auto hideByMacro = [](nOXDIAG100::tTrace& trace, u32 slot) {
  OXDIAG_TRACE(kHidden, put("slot ").put(slot, 10).put(" answered"));
};
inline constexpr auto showByCalls = [](nOXDIAG100::tTrace& trace, u32 slot) {
  putByCalls(trace, kShown, slot);
};
inline constexpr auto hideByCalls = [](nOXDIAG100::tTrace& trace, u32 slot) {
  putByCalls(trace, kHidden, slot);
};

inline void leave(nOXDIAG100::tTrace&) {
}

inline void switchOff(nOXDIAG100::tTrace& trace) {
  trace.disable();
}

inline void lockLines(nOXDIAG100::tTrace& trace) {
  trace.enableMutex();
}

inline void enableEveryField(nOXDIAG100::tTrace& trace) {
  constexpr u32 kWidth = 110;  // which holds them all
  trace.enableComponentVersion();
  trace.enableThreadId();
  trace.enableTimeStamp();
  trace.enableTimeDelta();
  trace.enableVerbosity();
  trace.setMinPrefixWidth(kWidth);
}
