#pragma once

// Power requests to a child device.

#include "ntos/irp.h"

namespace nOXDIAG100 {

// Serves and completes one; returns its status. PASSIVE_LEVEL.
NTSTATUS handleChildPower(DEVICE_OBJECT& device, IRP& irp);

}  // namespace nOXDIAG100
