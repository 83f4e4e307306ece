#pragma once

// The buses that have children through this module.

#include "package/windows/tParentDevice.h"

namespace nOXDIAG100 {

class tParentList {
 public:
  constexpr tParentList() = default;

  // Makes the list ready, and empty. Before that it has nothing and takes nothing.
  void initialise();

  // The record of a bus; null when it has none.
  tParentDevice* find(DEVICE_OBJECT const& device);

  // Makes a record for a bus that has none. Null when memory is exhausted or the list is not ready.
  tParentDevice* create(DEVICE_OBJECT& device);

  // Takes a record out; it is the caller's to destroy.
  void remove(tParentDevice& parent);

 private:
  bool isReady = false;
  FAST_MUTEX mutex = {};
  tLinkedList<tParentDevice> parents = {};
};

}  // namespace nOXDIAG100
