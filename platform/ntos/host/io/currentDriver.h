#pragma once

#include "io/deviceTable.h"

namespace ntoshost {

// The driver whose code the calling thread runs: its dispatch routine, DriverEntry, AddDevice or
// DriverUnload, and all that is called from there. Null outside of them.
DRIVER_OBJECT* currentDriver();

// From here to its end the calling thread runs this driver.
class DriverScope {
 public:
  explicit DriverScope(DRIVER_OBJECT* driver);
  ~DriverScope();
  DriverScope(DriverScope const&) = delete;
  DriverScope& operator=(DriverScope const&) = delete;

 private:
  DRIVER_OBJECT* const m_outer;
};

// It, for the sentences: "the driver \Driver\name", or "no driver".
struct CurrentDriverText {
  CurrentDriverText();
  char text[96];
};

}  // namespace ntoshost
