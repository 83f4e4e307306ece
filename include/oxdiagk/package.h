#pragma once

// What the platform's wrappers around devices ask of the module they wrap. They find these
// functions by their names in the module's export table; nobody else calls them.
//
// They need the module loaded, and run at PASSIVE_LEVEL.

#include "ntos/irp.h"
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

// The dispatch routine of every driver of the module: an entry of DRIVER_OBJECT::MajorFunction for
// all kinds of requests, to devices whose extension begins with a tDeviceExtension
// ("vexk/iDeviceHandler.h"). Children of a bus are served here; the requests of other devices go to
// the platform ("vexk/dispatch.h"), with the list of the bus' children in them where they ask for
// it.
//
// Completes the request or passes it on and returns its status. A kind above
// IRP_MJ_MAXIMUM_FUNCTION is neither: STATUS_UNSUCCESSFUL, and the request is still the caller's.
// PASSIVE_LEVEL for creation, closing, power and plug and play; IRQL <= DISPATCH_LEVEL for the
// rest.
OXDIAG_API NTSTATUS pkgWDMWrapperHandleIrp(DEVICE_OBJECT* device, IRP* irp);
}
