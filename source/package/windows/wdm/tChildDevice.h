#pragma once

// One child of a bus: the record in the extension of its device object.
//
// A child comes to two ends. The end of its handler: no request enters the handler any more, those
// that run in it are waited for, its stop() is called, and a handler of the wrapper's own takes its
// place. And the end of its device, which is deleted. Who takes the child away brings about the
// first; its own removal, or its bus if the system does not know the child, both. Whoever is first
// does it, all others wait until it is done.
//
// Locks, in the order in which they are taken: the bus' fast mutex guards the list that the child
// is in, `isPresent`, `isReported` and `reportsOnTheirWay`; the child's own kernel mutex guards the
// rest of what changes. `parent` changes under both. The remove lock counts the requests that run
// in the handler. Neither mutex is held at an end.
//
// Whoever uses a record has the child's mutex, the mutex of the bus that lists it, or a reference
// on its device.

#include "ntos/io.h"
#include "ntos/mutex.h"
#include "ntos/power.h"
#include "ntos/removeLock.h"
#include "package/windows/wdm/tChildTexts.h"
#include "package/windows/wdm/tPnpStates.h"
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
  EndHandler,  // somebody waits for that
  EndDevice,   // the child has entered tPnpState::Deleted
};

// How a bus goes.
enum class tBusEnd { BySurprise, InOrder };

// How a child goes that its bus takes away.
enum class tChildDeparture {
  Awaited,     // it is in use: the system is asked to let go of it
  EndHandler,  // it is not started, but the system knows it and removes it later
  EndDevice,   // the system does not know it
};

class tChildDevice final : public tDeviceExtension, public LIST_ENTRY {
 public:
  static tChildDevice& of(DEVICE_OBJECT const& device);

  // Makes a device of `driver` with the record in it, known to nobody yet. Null on failure, with
  // the reason in `status`, which is left alone on success:
  //   kStatusBadArgument  as tChildTexts::take
  //   kStatusOutOfMemory  no memory for the texts or the device
  static tChildDevice* create(DRIVER_OBJECT* driver, tBusIdentity const& bus,
                              tChildDescription const& description, i32& status);

  // Takes the device back that create() has made and nobody knows. The handler is not called.
  void discard();

  tChildDevice(tChildDevice const&) = delete;
  tChildDevice& operator=(tChildDevice const&) = delete;

  // Ready for requests, and a child of `bus`. Under the mutex of `bus`.
  void link(tParentDevice& bus);

  // No child of its bus any more. The child's own removal deletes it. Under the mutex of the bus,
  // takes the child's own, as the next three.
  void unlink();

  // The same as the bus goes, which may be the end of the child.
  tChildAftermath dismiss(tBusEnd end);

  // Not present any more.
  tChildDeparture depart();

  // A request that lists the child is on its way; it has succeeded, and so the system knows the
  // child, or failed. A failure is the end of a child that nobody needs any more.
  void beginReport() { ++reportsOnTheirWay; }
  tChildAftermath endReport(bool isSuccess);

  // What is to be done behind a request that has changed the child, or returns when it is done.
  // Nothing is held.
  void finish(tChildAftermath aftermath);

  // Waits until the handler has come to its end; the other so long at most (in units of 100 ns):
  // false when it has not.
  void awaitHandlerEnd();
  bool awaitHandlerEnd(i64 time);

  // Enters the handler for a request; leaves it again.
  NTSTATUS enter(void* request) { return IoAcquireRemoveLock(&removeLock, request); }
  void leave(void* request) { IoReleaseRemoveLock(&removeLock, request); }

  // Constant.
  DEVICE_OBJECT* const device;
  tBusIdentity const bus;
  u64 const instance;
  u32 const slot;
  bool const hasUniqueId;

  // Under the mutex of the bus.
  bool isPresent = true;    // changes under both, and may be read under either
  bool isReported = false;  // the system knows it
  u32 reportsOnTheirWay = 0;

  // Under the child's own mutex.
  KMUTEX mutex;
  tParentDevice* parent = nullptr;  // null: not linked
  tPnpStates states;
  DEVICE_POWER_STATE devicePower = PowerDeviceD3;
  SYSTEM_POWER_STATE systemPower = PowerSystemWorking;
  bool isAwaited = false;  // somebody waits for the end of its handler
  bool isRemoved = false;  // the system has removed it, as it does before each further start
  tChildTexts texts;

 private:
  tChildDevice(DEVICE_OBJECT& object, tBusIdentity const& identity,
               tChildDescription const& description, tChildTexts const& words);

  bool isKnown() const { return isReported || reportsOnTheirWay != 0; }
  bool endsWith(tBusEnd end) const;
  bool goesBySurprise();
  void endHandler();
  void endDevice();

  IO_REMOVE_LOCK removeLock;
  bool isEnding = false;  // atomic: somebody ends the handler, or has
  KEVENT handlerEnded;
};

}  // namespace nOXDIAG100
