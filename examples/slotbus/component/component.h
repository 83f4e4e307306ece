#pragma once

// What every source of the component shares: who it is, how verbose it is about what, and the
// library's macros on these terms. A function that traces has its stream in scope as `trace`.

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION ::nSLOTBUS100::kVersion
#define OXDIAG_TRACE_STREAM trace

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/traceMacros.h"
#include "vexk/tSSVersion.h"

namespace nSLOTBUS100 {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);

// The verbosities. The default filter shows 100 and above; `--filter "verbosity>=140"` leaves what
// is wrong and the summary, `--filter "verbosity>=60"` shows everything.
enum tVerbosity : unsigned int {
  kTraceSummary = 150,   // the result of a whole rack
  kTraceFailure = 140,   // a bad line, with its status in full
  kTraceDevice = 120,    // a device that was found
  kTraceProgress = 100,  // what is being done
  kTraceDetail = 60,     // ids and steps, for whoever looks for a fault in the component
};

}  // namespace nSLOTBUS100
