#pragma once

// The front door for configuration: by name and handle, without the classes behind them. For other
// modules, and for the configuration tunnel that serves user mode ("oxdiagk/tunnelRequest.h").
//
//     char name[] = "trace";
//     u32 const handle = nOXDIAG100::acquireInstance(name);
//     if (handle != nOXDIAG100::kNoHandle) {
//       nOXDIAG100::configure(handle, "--timestamp on");
//       nOXDIAG100::releaseInstance(handle);
//     }
//
// No function reports a failure but acquireInstance. kNoHandle, a handle that was released and any
// other number that is no handle make a function do nothing, and so does a registry that could not
// be built for want of memory when the library started: it issues no handles.
//
// Any thread may call any function. Each looks its handle up under the registry's lock and calls
// the object outside it, so a slow configuration holds up nobody else's lookup. Two threads that
// configure the same object wait for each other in the object, see tConfigurable.
// IRQL: PASSIVE_LEVEL.

#include "compiler/types.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

constexpr u32 kNoHandle = 0;
constexpr u32 kFirstHandle = 0xC0000000;
constexpr u32 kLastHandle = 0xCFFFFFFE;

// Issues a handle for the object that `name` begins with:
//
//     trace     the trace stream, tTrace; a null name means it, too
//     assert    the assertion configuration, tAssertConfiguration
//
// "kernel" or "kernel/" may stand in front. What stands behind is ignored, so "kernel/tracer" is
// the trace stream. Case matters. `name` is not changed and not kept.
//
// Every call issues another handle, also for an object that has one: numbers from kFirstHandle to
// kLastHandle in rising order, then from the first one on again; from then on none of the 15
// released last is issued. Each is good until it is given to releaseInstance.
// Returns kNoHandle when the name means nothing, when memory is exhausted and when every handle is
// in use.
OXDIAG_API u32 acquireInstance(char* name);

// Withdraws a handle. The object itself stays as it is.
OXDIAG_API void releaseInstance(u32 handle);

// Call the operation of the same name of the object, with the same arguments; see tConfigurable. A
// null `options` counts as an empty text.
OXDIAG_API void configure(u32 handle);
OXDIAG_API void configure(u32 handle, char const* options);
OXDIAG_API void configure(u32 handle, int argc, char** argv);
OXDIAG_API void pushConfiguration(u32 handle);
OXDIAG_API void popConfiguration(u32 handle);

// Calls inquire of the object with the same arguments. When it does nothing, neither the buffer nor
// what `needed` points to is written.
OXDIAG_API void inquire(u32 handle, char* buffer, unsigned int size, unsigned int* needed);

}  // namespace nOXDIAG100
