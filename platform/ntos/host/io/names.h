#pragma once

#include "ntos/io.h"

namespace ntoshost {

// Names of devices and symbolic links to them. Case does not count, and \DosDevices\ is \??\.
// The callers have the devices' lock.

// STATUS_SUCCESS, STATUS_OBJECT_NAME_INVALID, STATUS_OBJECT_NAME_COLLISION,
// STATUS_INSUFFICIENT_RESOURCES.
NTSTATUS nameDevice(UNICODE_STRING const& name, DEVICE_OBJECT* device);
NTSTATUS nameLink(UNICODE_STRING const& link, UNICODE_STRING const& target);

// The device loses its name, if it has one.
void forgetNameOf(DEVICE_OBJECT* device);

// STATUS_OBJECT_NAME_NOT_FOUND when there is no such link.
NTSTATUS forgetLink(UNICODE_STRING const& link);

// The device that a name or a link stands for, or null.
DEVICE_OBJECT* findNamed(UNICODE_STRING const& name);

u64 countLinks();

// Calls visit(text) for every link.
void visitLinks(void (*visit)(char const* text));

}  // namespace ntoshost
