#pragma once

// Plug-and-play requests to a child device.

#include "ntos/irp.h"

namespace nOXDIAG100 {

// Serves and completes one; returns its status. PASSIVE_LEVEL.
NTSTATUS handleChildPnp(DEVICE_OBJECT& device, IRP& irp);

}  // namespace nOXDIAG100
