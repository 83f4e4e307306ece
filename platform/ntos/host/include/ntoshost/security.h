#pragma once

#include "ntos/device.h"

// Who may open a device.
//
//     ntoshost::setDeviceSecurity(device, "D:P(A;;GA;;;SY)(A;;GA;;;BA)(A;;GR;;;WD)");
//     ntoshost::setCallerUser(1000);
//     status = ntoshost::openDevice(name, &file);  // STATUS_ACCESS_DENIED: no right to write
//
// A driver says the same with ZwSetSecurityObject, and the later one counts. Its list may have
// entries that allow; those for others than the system, administrators, users, authenticated users
// and everyone count for nothing.
//
// openDevice asks for generic read and write access, and is refused before the driver sees a
// request. The checks are of the calling thread's user: root is the system and an administrator,
// the user that runs the program an administrator, and all are everyone.

namespace ntoshost {

// Gives the device a security descriptor, as an INF file's Security value and the call that makes a
// secured device do, in the definition language: D: with P or not, and entries that allow rights
// GA, GR, GW, GX, FA, FR, FW, FX, one or several, to SY, BA, AU, BU or WD; an empty list lets
// nobody in. Null takes it away, and then everybody may open the device, as at the start. False,
// and nothing changes, when the text is something else.
//
// It counts for opens of this device object by name or address, not for those of others in its
// stack. IRQL <= DISPATCH_LEVEL, thread safe.
bool setDeviceSecurity(DEVICE_OBJECT* device, char const* descriptor);

constexpr u32 kOwnUser = 0xFFFFFFFF;

// The user that the calling thread opens devices for; kOwnUser, as at the start, is the one that
// runs the program.
void setCallerUser(u32 user);

}  // namespace ntoshost
