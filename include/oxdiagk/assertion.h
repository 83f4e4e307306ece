#pragma once

// What a contract does before and after its condition: asks whether it is to be checked, reports
// that it did not hold, and stops, breaks or goes on. Components use the macros of
// "oxdiagk/contractMacros.h", which are made of these.
//
// All policy is in the switches of tAssertConfiguration; an unknown category, null included, has
// none, so that nothing of it is checked and nothing stops.
//
// `category`: the name of a category. `component`, `version`, `line`, `file`: where the contract
// stands, as for tTrace::putPrefix. The texts are only read; they are not `const` because the
// exported names are older than that.
//
// Nothing here allocates or takes a lock of its own. The evaluations and continuationAction work on
// any thread at any IRQL at which the texts may be read; notificationAction writes a trace line,
// and works wherever the trace stream may be written: with the stream's mutex on at IRQL <=
// APC_LEVEL.

#include "oxdiagk/api.h"
#include "vexk/tSSVersion.h"

namespace nOXDIAG100 {

// Whether a contract of this kind is to be checked: the category's switch of the kind. One lookup
// of the category; the other arguments are not looked at.
OXDIAG_API bool evalRequire(char* category, char* component, tSSVersion version, unsigned int line,
                            char* file);
OXDIAG_API bool evalEnsure(char* category, char* component, tSSVersion version, unsigned int line,
                           char* file);
OXDIAG_API bool evalClassInvariant(char* category, char* component, tSSVersion version,
                                   unsigned int line, char* file);
OXDIAG_API bool evalLoopInvariant(char* category, char* component, tSSVersion version,
                                  unsigned int line, char* file);
OXDIAG_API bool evalCheck(char* category, char* component, tSSVersion version, unsigned int line,
                          char* file);
OXDIAG_API bool evalException(char* category, char* component, tSSVersion version,
                              unsigned int line, char* file);

// Traces that a contract did not hold, in one line of verbosity 105, which the stream's default
// filter shows:
//
//     [rack--41--rack.cpp------] ASSERTION FAILED: slot < count            category "default"
//     [rack--41--rack.cpp------] ASSERTION WARNING: slot < count           category "warning"
//     [rack--41--rack.cpp------] ASSERTION FAILED (disk): slot < count     any other, "disk" here
//
// `message`: the condition's text or the author's own; null counts as empty text.
OXDIAG_API void notificationAction(char* category, char* component, tSSVersion version,
                                   unsigned int line, char* file, char* message);

// With the category's terminate switch on, terminates; else, with its break switch on, breaks into
// the debugger and returns when that continues; else returns.
OXDIAG_API void continuationAction(char* category, char* component, tSSVersion version,
                                   unsigned int line, char* file);

// Breaks into the debugger: ssHalt of "vexk/debug.h". Returns when the debugger continues. Any
// IRQL, any thread.
OXDIAG_API void breakToDebugger();

// Stops the system: stores 0xDEADBEEF at address 0, so that the dump of the fault shows that mark
// (on the host the program ends by SIGSEGV), and loops for ever should the store not fault. Any
// IRQL, any thread.
[[noreturn]] OXDIAG_API void terminate();

}  // namespace nOXDIAG100
