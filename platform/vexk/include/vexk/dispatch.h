#pragma once

// What the platform does with the requests of its own devices ("vexk/functionDevice.h"), called by
// the driver's dispatch after the module has had its look. Each completes the request or passes it
// on and returns what a dispatch routine returns; the request must not be touched afterwards.
//
// A device that is gone completes with STATUS_DELETE_PENDING what is not for closing it; one that
// is not started, a device control with STATUS_DEVICE_NOT_READY. Controls of other methods than
// METHOD_NEITHER and METHOD_BUFFERED get STATUS_INVALID_DEVICE_REQUEST.

#include "ntos/irp.h"
#include "vexk/api.h"

// Create, close, cleanup and device controls are served, everything else goes down the stack.
// IRQL <= DISPATCH_LEVEL.
VEX_API NTSTATUS vexDispatch(DEVICE_OBJECT* device, IRP* request);

// Passed on to the lower device, in the manner of power requests. IRQL <= DISPATCH_LEVEL.
VEX_API NTSTATUS vexDispatchPower(DEVICE_OBJECT* device, IRP* request);

// Passed on to the lower device. PASSIVE_LEVEL.
VEX_API NTSTATUS vexDispatchSystemControl(DEVICE_OBJECT* device, IRP* request);

// Start goes down first and then to the device's handler; remove and surprise removal go to the
// handler first and then down, and remove ends by detaching and deleting the device. It waits for
// the requests that are in the device. The rest is passed on. PASSIVE_LEVEL.
VEX_API NTSTATUS vexDispatchPnp(DEVICE_OBJECT* device, IRP* request);
