#pragma once

// One bus device and the children that it has.
//
// It lives from the bus' first start to its removal. Whoever uses it from outside has entered it;
// the removal closes it, which waits until all have left. Who waits for a child's end refers to the
// child alone, and may do so longer than the bus is there.

#include "ntos/fastMutex.h"
#include "package/windows/wdm/tChildReport.h"
#include "package/windows/wdm/tLinkedList.h"

namespace nOXDIAG100 {

// The bus is being removed.
constexpr i32 kStatusBusRemoved = -50300;

// A child that is present has the instance number.
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
  // status; when memory is exhausted nothing has changed. What the system does not know of the
  // children is in `report`, for settle(). PASSIVE_LEVEL.
  NTSTATUS addRelations(IRP& request, tChildReport& report);

  // Has the system ask for the relations again. The bus is entered, or a child's mutex is held that
  // is linked to it. IRQL <= DISPATCH_LEVEL.
  void askForRelations();

  // The request with that report has ended below the bus. A driver above that fails it afterwards
  // is not seen: its children count as known to the system. PASSIVE_LEVEL.
  void settle(tChildReport& report, bool isSuccess);

  // The bus goes: no child is made any more, and all are let go. In order, those that are not
  // started come to their end; by surprise only those whose own removal has come already, and those
  // that the system does not know. PASSIVE_LEVEL.
  void dismissChildren(tBusEnd end);

  // Keeps the record from being destroyed; false when it is closed. Left as often as entered.
  // IRQL <= DISPATCH_LEVEL.
  bool enter() { return NT_SUCCESS(IoAcquireRemoveLock(&callers, nullptr)); }
  void leave() { IoReleaseRemoveLock(&callers, nullptr); }

  // Lets nobody in any more, so that every call of iChildBus fails, and waits until all have left.
  // Once. PASSIVE_LEVEL.
  void close();

 private:
  explicit tParentDevice(DEVICE_OBJECT& bus);

  i32 addChild(tChildDescription const& description);
  bool hasInstance(u64 instance);
  i32 link(tChildDevice& child);
  tChildDevice* takeAway(u32 slot, tChildDeparture& departure);
  tChildDevice* markAbsent(u32 slot, tChildDeparture& departure);
  tChildAftermath settle(tChildDevice& child, bool isSuccess);

  // What follows is called under the mutex.
  tChildDevice* findInstance(u64 instance);  // of those that are present
  tChildDevice* findSlot(u32 slot);
  u32 countUnknown();
  void listPresent(DEVICE_RELATIONS& relations, tChildReport& report);
  void unlinkAbsent();
  void forget(tChildDevice& child);

  // Takes the mutex; those in `doomed` are to be destroyed.
  void unlinkAll(tBusEnd end, tLinkedList<tChildDevice>& doomed);

  DEVICE_OBJECT& device;
  tBusIdentity const identity;
  u32 childCount = 0;  // in the list, absent ones included
  bool isRemoving = false;
  IO_REMOVE_LOCK callers;
  FAST_MUTEX mutex;
  tLinkedList<tChildDevice> children;
};

}  // namespace nOXDIAG100
