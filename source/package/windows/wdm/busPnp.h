#pragma once

// Plug-and-play requests to one of the platform's own devices: what its children need, before the
// platform has the request.

#include "ntos/irp.h"

namespace nOXDIAG100 {

// Passes the request on to the platform, or completes it with a failure; returns its status.
// PASSIVE_LEVEL.
NTSTATUS handleBusPnp(DEVICE_OBJECT& device, IRP& irp);

}  // namespace nOXDIAG100
