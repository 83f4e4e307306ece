#pragma once

// What the platform does with the requests of its own devices, called by the driver's dispatch
// after the module has had its look. Each completes the request or passes it on and returns what a
// dispatch routine returns; the request must not be touched afterwards.

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
// handler first and then down, and remove ends by detaching and deleting the device. The rest is
// passed on. PASSIVE_LEVEL.
VEX_API NTSTATUS vexDispatchPnp(DEVICE_OBJECT* device, IRP* request);
