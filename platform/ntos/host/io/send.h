#pragma once

#include "ntoshost/devices.h"

namespace ntoshost {

// sendRequest, but for what must not fail for want of memory: no fault is injected.
NTSTATUS sendRequestSurely(DEVICE_OBJECT* device, Request& request);

}  // namespace ntoshost
