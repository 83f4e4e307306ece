#pragma once

// What the platform's wrappers around devices ask of the module they wrap. They find these
// functions by their names in the module's export table. Two of them are for the driver of a bus
// with child devices ("vexk/iChildBus.h") as well, which calls the first itself and hands its
// requests to the second:
//
//     extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING*) {
//       pkgSetWDMWrapperLoadStateAndGetGUID(1);
//       for (auto& dispatch : driver->MajorFunction) dispatch = &pkgWDMWrapperHandleIrp;
//       driver->DriverExtension->AddDevice = &addDevice;  // calls vexAddFunctionDevice
//       driver->DriverUnload = &unload;  // calls pkgSetWDMWrapperLoadStateAndGetGUID(0)
//       return STATUS_SUCCESS;
//     }
//
// All of them need the module loaded. Any thread may call them, any number of drivers at the same
// time. What they return a pointer to belongs to the module and stays as long as that is loaded.
// PASSIVE_LEVEL, where nothing else is said.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "vexk/kernelTypes.h"
#include "vexk/moduleInfo.h"

extern "C" {

// Keeps the load state of the wrapper for legacy devices; 0 also clears the two words that are its
// own. Returns the module's package record. One state for all callers: the last call holds.
OXDIAG_API tModulePackage* pkgSetLegacyWrapperLoadState(u32 state);

// Keeps the load state of the wrapper for plug-and-play devices: one for all drivers, the last call
// holds. The first state that is not 0 makes the module's list of buses ready. The buses in it stay
// as they are whatever any driver says later. Returns the module's identifier.
OXDIAG_API tModuleGUID const* pkgSetWDMWrapperLoadStateAndGetGUID(u32 state);

// Writes the turn of the module's life into the event log, calls the module's entry with the reason
// and logs its failure. Returns the status of the entry. Reasons are in "vexk/moduleInfo.h".
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
OXDIAG_API i32 pkgWDMWrapperHandleIrp(_DEVICE_OBJECT* device, _IRP* irp);
}
