#pragma once

// What the platform does with the requests of its own devices ("vexk/functionDevice.h"). A driver's
// dispatch routine calls these functions, after the module has seen the request. Each function
// completes the request or passes it on, and returns what a dispatch routine returns; the caller
// must not touch the request afterwards.
//
//                      before the start,   after a surprise    once the remove
//                      or stopped          removal             request has come
//   create             succeeds            delete pending      delete pending
//   close, cleanup     succeed             succeed             succeed
//   device control     not ready           delete pending      delete pending
//   all others         passed down         passed down         delete pending
//
// "Not ready" is STATUS_DEVICE_NOT_READY, "delete pending" STATUS_DELETE_PENDING. Device controls
// of a started device with other methods than METHOD_NEITHER and METHOD_BUFFERED get
// STATUS_INVALID_DEVICE_REQUEST.
//
// A device control runs in the thread that calls vexDispatch. The pointers of METHOD_NEITHER are
// addresses of the process that sent the request, good in that process's threads alone. They reach
// this driver in such a thread unless a driver above has queued the request.

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/kernelTypes.h"

// Create, close, cleanup and device controls are served, everything else goes down the stack.
// IRQL <= DISPATCH_LEVEL.
VEX_API i32 vexDispatch(_DEVICE_OBJECT* device, _IRP* request);

// Passed on to the lower device, in the manner of power requests. IRQL <= DISPATCH_LEVEL.
VEX_API i32 vexDispatchPower(_DEVICE_OBJECT* device, _IRP* request);

// Passed on to the lower device. PASSIVE_LEVEL.
VEX_API i32 vexDispatchSystemControl(_DEVICE_OBJECT* device, _IRP* request);

// Start goes down first and then to the device's handler. When the handler's start fails, the
// request fails: with STATUS_INSUFFICIENT_RESOURCES for kStatusOutOfMemory, with
// STATUS_UNSUCCESSFUL for every other negative status. Remove and surprise removal go to the
// handler first and then down, and remove ends by detaching and deleting the device. It waits for
// the requests that are in the device. A request for bus relations is passed on and waited for;
// when it fails below, the list that went down with it is given back with its references. So the
// status that is returned for it is the final one. The rest is passed on. PASSIVE_LEVEL.
VEX_API i32 vexDispatchPnp(_DEVICE_OBJECT* device, _IRP* request);
