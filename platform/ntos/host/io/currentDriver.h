#pragma once

#include "io/deviceTable.h"

namespace ntoshost {

// The driver whose code the calling thread runs: its dispatch routine, DriverEntry, AddDevice or
// DriverUnload, and all that is called from there. Null outside of them.
DRIVER_OBJECT* currentDriver();

// Whether the calling thread has yet to return into the driver: it runs it, or one that it called.
bool isWithinDriver(DRIVER_OBJECT const* driver);

// From here to its end the calling thread runs this driver.
class DriverScope {
 public:
  explicit DriverScope(DRIVER_OBJECT* driver);
  ~DriverScope();
  DriverScope(DriverScope const&) = delete;
  DriverScope& operator=(DriverScope const&) = delete;

 private:
  friend bool isWithinDriver(DRIVER_OBJECT const* driver);

  DRIVER_OBJECT* const m_driver;
  DriverScope const* const m_outer;
};

// It, for the sentences: "the driver \Driver\name", or "no driver".
struct CurrentDriverText {
  CurrentDriverText();
  char text[96];
};

}  // namespace ntoshost
