#pragma once

// The place where the children of a bus device are made and taken away, as the platform and the
// component see it. The module's driver wrapper provides it to iDeviceHandler::attachChildBus.

#include "vexk/iDeviceHandler.h"

// One child. All of it is copied but the handler, which stays the caller's.
//
// The handler is called until its stop(), which comes once and is the last call: no request runs in
// it then, none enters it any more, and requests that come later are answered by the bus. So it may
// be deleted in its stop(). stop() comes
//   - in removeChild, before that returns: the handler may as well be deleted behind it;
//   - when the system removes a child that the bus does not list any more;
//   - when the bus is removed, for children that are not started. Others are the system's still and
//     come to their end later, those of a bus that has gone by surprise too. The handlers of such
//     children outlive the bus.
struct tChildDescription {
  wchar_t const* const* hardwareIds;  // the most specific first; 1 to 201 characters each, from
                                      // 0x20 to 0x7F without commas: others stop Windows
  u32 hardwareIdCount;                // at least 1; all lengths, one more each, and 1: at most 1024
  wchar_t const* description;         // what people read; null counts as empty
  u64 instance;                       // tells it from every other child of the bus
  bool hasUniqueId;                   // `instance` tells it from every other device of the system
  u32 slot;                           // where it sits
  iDeviceHandler* handler;            // serves its requests, see iChildHandler.h
};

// PASSIVE_LEVEL; any thread. `status` is left alone on success; negative on entry, nothing is done.
// Good until the stop() of the bus' component has returned ("vexk/iDeviceComponent.h"): a call that
// comes later uses freed memory. So a handler that outlives its bus does not call it in its stop().
class iChildBus {
 public:
  // Adds a child, which the system sees when it next asks for the bus' relations (while the device
  // starts that comes by itself; later IoInvalidateDeviceRelations asks for it).
  // When it fails nothing has been made, and the handler was not and will not be called. When it
  // succeeds a request may run in the handler before it returns.
  //   -50303              a child that is present has the instance number
  //   kStatusBadArgument  a hardware id is missing, too long or has a character that may not be
  //                       in it, or all of them are too long; or there is no handler
  //   kStatusOutOfMemory  no memory for the device or what it says of itself
  //   -50300              the bus is being removed
  virtual void createChild(tChildDescription const& description, i32& status) = 0;

  // Takes the child in a slot away. Returns when the handler's stop() has returned, whichever
  // thread has called it. For that it waits: for the requests that run in the handler, and until
  // the system has let go of a child that is started, which it is asked for every 10 seconds (a
  // request for relations may fail). So it is not called from within a handler of the child or a
  // plug-and-play or power request of the bus or the child. A child that was never started stays
  // in the system's tree, without a handler, until the system next asks for the bus' relations.
  //   kStatusBadArgument  no present child sits there, or the bus is being removed. The stop() of a
  //                       child that was there comes by itself then
  virtual void removeChild(u32 slot, i32& status) = 0;

 protected:
  ~iChildBus() = default;
};
