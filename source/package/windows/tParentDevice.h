#pragma once

// One bus device and the children that it has.
//
// It lives from the bus' first start to its removal, and is closed before the bus goes. Who waits
// for a child's going may do so longer than that.

#include "ntos/fastMutex.h"
#include "package/windows/tChildDevice.h"
#include "package/windows/tLinkedList.h"

namespace nOXDIAG100 {

constexpr i32 kStatusBusRemoved = -50300;
constexpr i32 kStatusChildExists = -50303;

class tParentDevice final : public iChildBus, public LIST_ENTRY {
 public:
  // Null when memory is exhausted. PASSIVE_LEVEL.
  static tParentDevice* create(DEVICE_OBJECT& device);

  // Frees the record, which is closed and has no children any more.
  void destroy();

  tParentDevice(tParentDevice const&) = delete;
  tParentDevice& operator=(tParentDevice const&) = delete;

  DEVICE_OBJECT& getDevice() const { return device; }

  void createChild(tChildDescription const& description, i32& status) override;
  void removeChild(u32 slot, i32& status) override;

  // Makes a list of the devices that the request has already and of the present children, with a
  // reference on each, and forgets the absent ones: their own removal deletes them. Returns the
  // status; when memory is exhausted nothing has changed. PASSIVE_LEVEL.
  NTSTATUS addRelations(IRP& request);

  // The bus goes: no child is made any more, and all are let go, those that are not started for
  // good. PASSIVE_LEVEL.
  void dismissChildren();

  // From here on every call of iChildBus fails; waits until none needs the bus any more. Once.
  // PASSIVE_LEVEL.
  void close();

 private:
  explicit tParentDevice(DEVICE_OBJECT& bus);

  bool enter() { return NT_SUCCESS(IoAcquireRemoveLock(&callers, nullptr)); }
  void leave() { IoReleaseRemoveLock(&callers, nullptr); }

  i32 addChild(tChildDescription const& description);
  bool hasInstance(u64 instance);
  i32 link(tChildDevice& child);
  tChildDeparture takeAway(u32 slot, KEVENT& gone, tChildDevice*& child);
  tChildDeparture markAbsent(u32 slot, KEVENT& gone, tChildDevice*& child);

  // What follows is called under the mutex.
  tChildDevice* findInstance(u64 instance);  // of those that are present
  tChildDevice* findSlot(u32 slot);
  void listPresent(DEVICE_RELATIONS& relations);
  void unlinkAbsent();
  void forget(tChildDevice& child);

  // Takes the mutex; those in `doomed` are to be destroyed.
  void unlinkAll(tLinkedList<tChildDevice>& doomed);

  DEVICE_OBJECT& device;
  tBusIdentity const identity;
  u32 childCount = 0;  // in the list, absent ones included
  bool isRemoving = false;
  IO_REMOVE_LOCK callers;
  FAST_MUTEX mutex;
  tLinkedList<tChildDevice> children;
};

}  // namespace nOXDIAG100
