#pragma once

#include "ntos/device.h"
#include "slotbus/component/iRackSource.h"

// A machine with a rack plugged in: the executive's PnP manager has the component's driver, its bus
// and the devices of the rack. One at a time, while the modules run.
class tRackMachine {
 public:
  // The rack comes from `source`, which outlives the object.
  explicit tRackMachine(nSLOTBUS100::iRackSource& source);

  // Takes all of it away again.
  ~tRackMachine();
  tRackMachine(tRackMachine const&) = delete;
  tRackMachine& operator=(tRackMachine const&) = delete;

  // False when the kernel could not load the driver or start the bus.
  bool isRunning() const { return isStarted; }

  // Asks one device for its line, as a program would do, and with each call the next; nothing
  // happens when there is none.
  void askNextDevice();

 private:
  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* bus = nullptr;
  bool isStarted = false;
  u64 nextDevice = 0;
};
