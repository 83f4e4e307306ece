#pragma once

#include "ntos/irp.h"
#include "ntos/removeLock.h"
#include "vexk/functionDevice.h"
#include "vexk/iDeviceHandler.h"

// The platform's own device of a stack. Lives in the extension of its device object, behind the
// word that points to it, and so as long as anybody refers to that.
//
// The remove lock counts the requests that are on their way through the device; the removal drains
// it before the lower device and the component are let go of. What comes later is refused, except
// that handles can always be closed.
class tFunctionDevice final : public iDeviceHandler {
 public:
  static constexpr u32 kExtensionSize = 256;  // bytes, for the word and the object

  // Constructs the object in the device's extension.
  static tFunctionDevice& construct(DEVICE_OBJECT& device,
                                    tFunctionDeviceDescription const& description,
                                    iDeviceComponent& component);
  static tFunctionDevice& of(DEVICE_OBJECT const& device);

  // On top of the physical device's stack, and ready for requests. False when that takes no more.
  bool attach();

  // The four kinds of requests, see "vexk/dispatch.h".
  NTSTATUS dispatch(IRP& request);
  NTSTATUS dispatchPower(IRP& request);
  NTSTATUS dispatchSystemControl(IRP& request);
  NTSTATUS dispatchPnp(IRP& request);

  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;
  DEVICE_OBJECT* getDeviceObject() override { return &object; }
  DEVICE_OBJECT* getPhysicalDevice() override { return &physical; }
  DEVICE_OBJECT* getLowerDevice() override { return lower; }
  void getBusTypeGUID(GUID& wanted) override { wanted = busType; }
  u32 getLegacyBusNumber() override { return busNumber; }
  void attachChildBus(iChildBus* bus) override { children = bus; }
  void start(i32& status) override;
  void stop(bool isSurprise) override;
  bool isChildDevice() override { return false; }

 private:
  enum tLife : u32 { kAdded, kStarted, kPaused, kGone };

  tFunctionDevice(DEVICE_OBJECT& device, tFunctionDeviceDescription const& description,
                  iDeviceComponent& owner);

  NTSTATUS enter(IRP& request);
  void leave(IRP& request);
  tLife getLife() const { return __atomic_load_n(&life, __ATOMIC_ACQUIRE); }
  void setLife(tLife next) { __atomic_store_n(&life, next, __ATOMIC_RELEASE); }

  NTSTATUS open(IRP& request);
  NTSTATUS control(IRP& request);
  NTSTATUS serveControl(IRP& request);
  NTSTATUS passOn(IRP& request);
  NTSTATUS passAndWait(IRP& request);
  NTSTATUS agree(IRP& request);
  NTSTATUS queryRelations(IRP& request);
  NTSTATUS passBusRelations(IRP& request);
  NTSTATUS startDevice(IRP& request);
  NTSTATUS startWithin(IRP& request);
  NTSTATUS stopDevice(IRP& request);
  NTSTATUS surprise(IRP& request);
  NTSTATUS remove(IRP& request);

  DEVICE_OBJECT& object;
  DEVICE_OBJECT& physical;
  DEVICE_OBJECT* lower = nullptr;
  iDeviceComponent& component;
  iChildBus* children = nullptr;
  GUID const busType;
  u32 const busNumber;
  tLife life = kAdded;
  IO_REMOVE_LOCK removeLock;
};
