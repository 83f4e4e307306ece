#pragma once

// The handler of a child, to derive from: only device controls, and the end, are a child's own.
//
//     class tLamp final : public iChildHandler {
//       void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output,
//                                u32 outputLength, u64* information, i32* status) override;
//     };

#include "vexk/iDeviceHandler.h"

// The system has the device objects of children, and the bus tells what they are on.
class iChildHandler : public iDeviceHandler {
 public:
  DEVICE_OBJECT* getDeviceObject() final { return nullptr; }
  DEVICE_OBJECT* getPhysicalDevice() final { return nullptr; }
  DEVICE_OBJECT* getLowerDevice() final { return nullptr; }
  void getBusTypeGUID(GUID& busType) final { busType = {}; }
  u32 getLegacyBusNumber() final { return 0; }
  void attachChildBus(iChildBus*) final {}
  void start(i32&) final {}
  void stop(bool) override {}
  bool isChildDevice() final { return true; }

 protected:
  ~iChildHandler() = default;
};
