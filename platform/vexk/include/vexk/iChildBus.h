#pragma once

// The place where the children of a bus device are made and taken away, as the platform and the
// component see it. The module's driver wrapper provides it to iDeviceHandler::attachChildBus.

#include "vexk/iDeviceHandler.h"

// One child. All of it is copied but the handler, which stays the caller's and outlives the child's
// device: its stop() is the last call that the bus makes, at the device's end. A bus that is
// removed lets go of children that are still in use, and those come to their end later.
struct tChildDescription {
  wchar_t const* const* hardwareIds;  // the most specific first; 1 to 201 characters each
  u32 hardwareIdCount;                // at least 1; all lengths, one more each, and 1: at most 1024
  wchar_t const* description;         // what people read; null counts as empty
  u64 instance;                       // tells it from every other child of the bus
  bool hasUniqueId;                   // `instance` tells it from every other device of the system
  u32 slot;                           // where it sits
  iDeviceHandler* handler;            // serves its requests, see iChildHandler.h
};

// PASSIVE_LEVEL; any thread. `status` is left alone on success; negative on entry, nothing is done.
class iChildBus {
 public:
  // Adds a child, which the system sees when it next asks for the bus' relations (while the device
  // starts that comes by itself; later IoInvalidateDeviceRelations asks for it).
  // When it fails the handler may have been told to stop, or not.
  //   -50303              a child that is present has the instance number
  //   kStatusBadArgument  a hardware id is missing, too long, or all of them are
  //   kStatusOutOfMemory  no memory for the device or what it says of itself
  //   -50300              the bus is being removed
  virtual void createChild(tChildDescription const& description, i32& status) = 0;

  // Takes the child in a slot away and returns when the system has let go of it: its handler is
  // not called any more. Waits; not from within a request of the bus.
  //   kStatusBadArgument  no present child sits there, or the bus is gone
  virtual void removeChild(u32 slot, i32& status) = 0;

 protected:
  ~iChildBus() = default;
};
