#pragma once

// The handler of a child, to derive from: only device controls, and the end, are a child's own.
//
//     class tLamp final : public iChildHandler {
//       void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output,
//                                u32 outputLength, u64* information, i32* status) override;
//     };

#include "compiler/compiler.h"
#include "vexk/iDeviceHandler.h"
#include "vexk/tModuleGUID.h"

// The system has the device objects of children, and the bus tells what they are on.
class iChildHandler : public iDeviceHandler {
 public:
  _DEVICE_OBJECT* getDeviceObject() final { return nullptr; }
  _DEVICE_OBJECT* getPhysicalDevice() final { return nullptr; }
  _DEVICE_OBJECT* getLowerDevice() final { return nullptr; }
  void getBusTypeGUID(_GUID& busType) final {
    nCompiler::clearBytes(&reinterpret_cast<u8&>(busType), sizeof(tModuleGUID));
  }
  u32 getLegacyBusNumber() final { return 0; }
  void attachChildBus(iChildBus*) final {}
  void start(i32&) final {}
  void stop(bool) override {}
  bool isChildDevice() final { return true; }

 protected:
  ~iChildHandler() = default;
};
