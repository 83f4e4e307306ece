#pragma once

#include "ntos/device.h"

// Sends a device in a slot what the PnP manager of a kernel sends to one that has a driver, and
// Wine's does not: start, power, stop, a removal that is cancelled. Checks that all of it succeeds.
void liveThrough(DEVICE_OBJECT* device);
