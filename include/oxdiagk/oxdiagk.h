#pragma once

// Everything that a client component may use, in one include. Each header is the manual of what it
// declares.

#include "oxdiagk/iStatus2Description.h"   // what a structured description of a status can do
#include "oxdiagk/iTraceDestination.h"     // where trace text goes; derive your own
#include "oxdiagk/iTraceable.h"            // objects that write themselves into a line
#include "oxdiagk/statusMacros.h"          // set a status with its origin, in one statement
#include "oxdiagk/tBlockTracer.h"          // entry and exit of a block of code
#include "oxdiagk/tConfigurable.h"         // objects that are set by option words
#include "oxdiagk/tStatus2.h"              // a code and where it was set
#include "oxdiagk/tStatus2Heap.h"          // the fixed memory behind statuses
#include "oxdiagk/tTrace.h"                // the trace stream
#include "oxdiagk/tTraceFilter.h"          // which lines are shown
#include "oxdiagk/tVEXTraceDestination.h"  // the debugger print
#include "oxdiagk/traceMacros.h"           // a trace line or a block, in one statement
