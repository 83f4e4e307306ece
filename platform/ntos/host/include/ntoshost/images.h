#pragma once

#include "ntos/driver.h"

// Drivers with images: shared objects of the program's, mapped and unmapped as the kernel's loader
// does it. What an image does not define itself it has from the program, which exports it.
//
//     DRIVER_OBJECT* driver = nullptr;
//     ntoshost::loadDriverImage("oxdiagcontrol", "/some/folder/oxdiagcontrol.so", &driver);
//     ...
//     ntoshost::stopDriver(driver);
//
// The place of an unmapped image stays empty. A thread that returns there, calls into it or touches
// it stops the program with one sentence, and so does an image that goes while a thread owns a
// mutex in it or a remove lock in it is held. PASSIVE_LEVEL, thread safe.

namespace ntoshost {

// As loadDriver, of the DriverEntry in the shared object `file`. The image is mapped until the
// driver is unloaded, or its DriverEntry has failed. STATUS_OBJECT_NAME_NOT_FOUND: there is no such
// file, it cannot be mapped, or it has no DriverEntry. STATUS_IMAGE_ALREADY_LOADED: the file is
// mapped.
NTSTATUS loadDriverImage(char const* name, char const* file, DRIVER_OBJECT** driver);

// Stops a driver as the service manager does, with an image or without. From now on nobody can open
// its devices. STATUS_SUCCESS: nobody had one open, and the driver is unloaded. STATUS_PENDING: it
// is unloaded when the last handle is closed, by the thread that closes it.
// STATUS_INVALID_DEVICE_REQUEST: it has no DriverUnload; nothing happens.
// STATUS_DEVICE_BUSY: the PnP manager has it, or it was stopped before; nothing happens.
NTSTATUS stopDriver(DRIVER_OBJECT* driver);

}  // namespace ntoshost
