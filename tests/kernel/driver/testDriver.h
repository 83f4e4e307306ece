#pragma once

#include "ntos/driver.h"

// The driver that the tests run in, given to DriverEntry.
extern DRIVER_OBJECT* testDriverObject;
