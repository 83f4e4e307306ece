#pragma once

#include "vexk/iDeviceHandler.h"
#include "wine/tEnumerator.h"
#include "wine/tRackPlace.h"

// slotbus.sys with a rack plugged in, as Wine's PnP manager has it: loaded, its bus started, its
// children listed. PASSIVE_LEVEL; one at a time for each service.
class tLoadedRack {
 public:
  static constexpr u32 kSlots = 27;  // good lines of faulty.txt

  explicit tLoadedRack(tEnumerator& worker, tRackService const& rackService = kFirstRack)
      : service(rackService), enumerator(worker), place(service) {}

  // What went wrong, or null; unload() tidies up in any case.
  char const* load();
  char const* unload();

  // The bus, and its children in the order of their slots.
  DEVICE_OBJECT* getBus() const { return bus; }
  DEVICE_OBJECT* getSlot(u32 index) const { return slots[index]; }

 private:
  char const* findDevices();

  tRackService const& service;
  tEnumerator& enumerator;
  tRackPlace place;
  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* bus = nullptr;
  DEVICE_OBJECT* slots[kSlots] = {};
};
