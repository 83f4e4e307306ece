#pragma once

// One child of a bus: the record in the extension of its device object.
//
// Locks, in the order in which they are taken: the bus' fast mutex guards the list that the child
// is in, `isPresent` and `isReported`; the child's own kernel mutex guards the rest of what
// changes. `parent` changes under both. The remove lock counts the requests that run in the
// handler; it is drained, and the device deleted, with neither of the two mutexes held.

#include "ntos/io.h"
#include "ntos/mutex.h"
#include "ntos/power.h"
#include "ntos/removeLock.h"
#include "package/windows/tChildTexts.h"
#include "package/windows/tPnpStates.h"
#include "vexk/iChildBus.h"

namespace nOXDIAG100 {

class tParentDevice;

// A bus as its children tell it.
struct tBusIdentity {
  GUID type;
  u32 number;  // of its legacy kind
};

// What a request leaves to be done for a child when its mutex is free again.
enum class tChildAftermath {
  None,
  LetGo,    // whoever waits for the child's going may know when no request runs in it any more
  Destroy,  // the child has entered tPnpState::Deleted, and its device goes
};

// How a child goes that its bus takes away.
enum class tChildDeparture {
  Unknown,    // there is none
  Awaited,    // it is in use: an event is set when it is gone
  Drained,    // it is not started: when no request runs in it, it is out of use; its device is
              // referenced until then
  Forgotten,  // nobody has been told of it: it is out of the bus' list and to be destroyed
};

// The handler stays the first word of the extension.
class tChildDevice final : public tDeviceExtension, public LIST_ENTRY {
 public:
  static tChildDevice& of(DEVICE_OBJECT const& device);

  // Makes a device of `driver` with the record in it, known to nobody yet. Null on failure, with
  // the reason in `status`, which is left alone on success:
  //   kStatusBadArgument  as tChildTexts::take
  //   kStatusOutOfMemory  no memory for the texts or the device
  static tChildDevice* create(DRIVER_OBJECT* driver, tBusIdentity const& bus,
                              tChildDescription const& description, i32& status);

  tChildDevice(tChildDevice const&) = delete;
  tChildDevice& operator=(tChildDevice const&) = delete;

  // Ready for requests, and a child of `bus`. Under the mutex of `bus`.
  void link(tParentDevice& bus);

  // No child of its bus any more. The child's own removal deletes it. Under the mutex of the bus,
  // takes the child's own, as the next two.
  void unlink();

  // The same as the bus goes: a child that is not started is the bus' to destroy.
  tChildAftermath dismiss();

  // Not present any more.
  tChildDeparture depart(KEVENT& gone);

  // What is to be done behind a request that has changed the child. Nothing is held.
  void finish(tChildAftermath aftermath);

  // Enters the remove lock for a request; leaves it again.
  NTSTATUS enter(void* request) { return IoAcquireRemoveLock(&removeLock, request); }
  void leave(void* request) { IoReleaseRemoveLock(&removeLock, request); }

  // Lets no request in any more and waits for those that run.
  void drain();

  // Constant.
  DEVICE_OBJECT* const device;
  tBusIdentity const bus;
  u64 const instance;
  u32 const slot;
  bool const hasUniqueId;

  // Under the mutex of the bus.
  bool isPresent = true;
  bool isReported = false;  // the system has been told of it

  // Under the child's own mutex.
  KMUTEX mutex;
  tParentDevice* parent = nullptr;  // null: not linked
  tPnpStates states;
  DEVICE_POWER_STATE devicePower = PowerDeviceD3;
  SYSTEM_POWER_STATE systemPower = PowerSystemWorking;
  KEVENT* goneEvent = nullptr;  // of who waits for its going; who sets it clears the pointer
  tChildTexts texts;

 private:
  tChildDevice(DEVICE_OBJECT& object, tBusIdentity const& identity,
               tChildDescription const& description, tChildTexts const& words);

  KEVENT* takeGoneEvent();
  void letGo();
  void destroy();

  IO_REMOVE_LOCK removeLock;
};

}  // namespace nOXDIAG100
