#pragma once

// The first word of a device extension, in which the dispatch of requests finds the device's
// handler.
//
// The handler of a child may be deleted in its last call, and requests to the child go on coming.
// So one lock guards the look into the slot, as long as the handler answers, and the exchange of
// the handler for one of the wrapper's own. IRQL <= DISPATCH_LEVEL.

#include "ntos/device.h"
#include "vexk/iDeviceHandler.h"

namespace nOXDIAG100 {

// Asks the handler in the slot.
bool isChildDevice(DEVICE_OBJECT const& device);

// Puts the wrapper's own handler of a child into the slot, which refuses device controls. Returns
// the former one: no request finds it any more, and none is asking it.
iDeviceHandler& retireHandler(tDeviceExtension& slot);

}  // namespace nOXDIAG100
