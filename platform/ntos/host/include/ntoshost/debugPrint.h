#pragma once

#include <stddef.h>

namespace ntoshost {

// Receives what DbgPrint and vDbgPrintEx print: one call for each print, `text` not terminated. Of
// vDbgPrintEx only errors are printed, of any component.
// Calls come one at a time, on the printing threads. A sink must not print itself.
using DebugPrintSink = void(void* context, char const* text, size_t length);

// Sends the debugger print of all threads to `sink`; null means standard error, as at the start.
// When this returns, the sink before is no longer running.
void setDebugPrintSink(DebugPrintSink* sink, void* context);

}  // namespace ntoshost
