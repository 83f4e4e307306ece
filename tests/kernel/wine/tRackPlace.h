#pragma once

#include "wine/rackService.h"

// The place where a rack is plugged into the machine: a device without a bus, for the driver of a
// service, as the system keeps it in its registry. The key is volatile. PASSIVE_LEVEL.
class tRackPlace {
 public:
  explicit tRackPlace(tRackService const& rackService = kFirstRack) : service(rackService) {}

  // From now on Wine's PnP manager finds a rack there, when it looks or the driver is loaded.
  NTSTATUS plugIn();

  // Tells Wine's PnP manager to ask the bus for its children, which it does not by itself when the
  // bus has started. Nothing happens when there is no driver or no bus.
  void invalidate();

  // The rack is gone, and Wine's PnP manager has removed its devices when this returns.
  NTSTATUS pullOut();

 private:
  NTSTATUS openPlace(HANDLE& key) const;
  NTSTATUS describe(HANDLE key) const;

  tRackService const& service;
};
