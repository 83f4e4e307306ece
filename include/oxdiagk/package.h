#pragma once

// What the platform's wrappers around devices ask of the module they wrap. They find these
// functions by their names in the module's export table; nobody else calls them.
//
// They need the module loaded, and run at PASSIVE_LEVEL.

#include "ntos/types.h"
#include "oxdiagk/api.h"
#include "vexk/moduleInfo.h"

extern "C" {

// Keeps the load state of the wrapper for legacy devices; 0 also clears the two words that are its
// own. Returns the module's package record.
OXDIAG_API tModulePackage* pkgSetLegacyWrapperLoadState(u32 state);

// Keeps the load state of the wrapper for plug-and-play devices; any but 0 first makes the
// module's list of buses ready, and empty. Returns the module's identifier.
OXDIAG_API tModuleGUID const* pkgSetWDMWrapperLoadStateAndGetGUID(u32 state);

// Writes the turn of the module's life into the event log, calls the module's entry with the reason
// and logs its failure. Returns the status of the entry.
OXDIAG_API i32 pkgWDMWrapperCallSSMain(u32 reason);
}
