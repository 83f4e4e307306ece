#pragma once

// The children that a request for relations lists and that the system does not know yet. It knows
// them when the request has succeeded.

#include "package/windows/wdm/tChildDevice.h"

namespace nOXDIAG100 {

class tChildReport {
 public:
  tChildReport() = default;
  ~tChildReport();
  tChildReport(tChildReport const&) = delete;
  tChildReport& operator=(tChildReport const&) = delete;

  // Room for so many; false when memory is exhausted. Once. IRQL <= APC_LEVEL.
  bool reserve(u32 capacity);

  // Adds a child, with a reference on its device. There is room. Under the mutex of the bus.
  void add(tChildDevice& child);

  // Takes one out, whose reference is the caller's to give back; null when there is none.
  tChildDevice* take();

 private:
  tChildDevice** children = nullptr;
  u32 count = 0;
};

}  // namespace nOXDIAG100
