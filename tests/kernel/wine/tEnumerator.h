#pragma once

#include "ntos/driver.h"

// Waits for the thread in which Wine's PnP manager asks buses for their children. It serves one
// invalidated device after the other, the last one first; a device of this object's own that is
// served tells that the thread has got there. PASSIVE_LEVEL; one at a time.
class tEnumerator {
 public:
  // Makes the device, of a driver that has no other use for plug-and-play requests.
  NTSTATUS open(DRIVER_OBJECT& driver);
  void close();

  // Waits until all buses that were invalidated before have been asked, and their children added.
  void settle();

 private:
  DEVICE_OBJECT* device = nullptr;
};
