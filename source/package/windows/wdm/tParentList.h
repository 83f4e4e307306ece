#pragma once

// The buses that have children through this module, of all its drivers.

#include "package/windows/wdm/tParentDevice.h"
#include "package/windows/wdm/tSpinLock.h"

namespace nOXDIAG100 {

class tParentList {
 public:
  constexpr tParentList() = default;

  // Makes the list ready, and empty, unless it is ready already. Before that it has nothing and
  // takes nothing. Thread safe, as the rest.
  void initialise();

  // The record of a bus, entered for the caller; null when it has none.
  tParentDevice* enter(DEVICE_OBJECT const& device);

  // The same, with a new record for a bus that has none. Null when memory is exhausted or the list
  // is not ready.
  tParentDevice* provide(DEVICE_OBJECT& device);

  // Takes the record of a bus out; it is the caller's to close and destroy. Null when it has none.
  tParentDevice* take(DEVICE_OBJECT const& device);

 private:
  tParentDevice* find(DEVICE_OBJECT const& device);
  tParentDevice* enterOrAppend(DEVICE_OBJECT const& device, tParentDevice*& fresh);

  tSpinLock initialising;
  bool isReady = false;  // atomic
  FAST_MUTEX mutex = {};
  tLinkedList<tParentDevice> parents = {};
};

// The list of the module. It is made ready before any device is handed to the module.
extern tParentList wdmParents;

}  // namespace nOXDIAG100
