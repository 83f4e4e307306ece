#pragma once

// Device controls to a child device.

#include "ntos/irp.h"

namespace nOXDIAG100 {

// Has the child's handler serve one, and completes it; returns its status. IRQL <= DISPATCH_LEVEL.
NTSTATUS handleChildControl(DEVICE_OBJECT& device, IRP& irp);

}  // namespace nOXDIAG100
