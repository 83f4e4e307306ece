#pragma once

#include "pnp/tree.h"

namespace ntoshost {

// The steps of a device's life, taken by an operation.

// Asks the bus who the device is. A device that cannot say its id is Failed.
NTSTATUS identify(Node& node);

// From Present, Failed or Stopped to Started, with what is below it.
NTSTATUS start(Node& node);

// Asks a started device for its bus relations and takes the consequences.
NTSTATUS enumerate(Node& node);

// Runs AddDevice of the node's driver, if it has one.
NTSTATUS addFunctionDevice(Node& node, DRIVER_OBJECT* driver);

// The remove request for one device.
void sendRemove(Node& node);

// The device has gone: it is told so and removed, at once or when its last handle is closed.
void surpriseRemove(Node& node);

// No root device has this driver any more.
void forgetRootDriver(DRIVER_OBJECT* driver);

// Whether new children are started at once.
bool startsChildren();

// The end of one of the executive's own physical devices.
void deleteRootDevice(DEVICE_OBJECT* device);

}  // namespace ntoshost
