#pragma once

// A started bus with one child, for tests of what the child answers.

#include "package/windows/wdm/tChildDevice.h"
#include "support/tBusStack.h"

class tChildStack : public tBusStack {
 public:
  explicit tChildStack(u64 instance = 1, u32 slot = 7) {
    startBus();
    child = add(instance, slot);
  }

  nOXDIAG100::tChildDevice& record() const { return recordOf(child); }
  nOXDIAG100::tPnpState state() const { return record().states.get(); }

  // Zeros when there is no device.
  static nOXDIAG100::tChildDevice& recordOf(DEVICE_OBJECT* device) {
    alignas(
        nOXDIAG100::tChildDevice) static constinit u8 none[sizeof(nOXDIAG100::tChildDevice)] = {};
    if (device == nullptr) return *reinterpret_cast<nOXDIAG100::tChildDevice*>(none);
    auto* const extension = static_cast<tDeviceExtension*>(device->DeviceExtension);
    return *static_cast<nOXDIAG100::tChildDevice*>(extension);
  }

  DEVICE_OBJECT* child;
};
