#pragma once

// What stands behind a device object of the family. The first word of the device extension points
// to it, so a driver's dispatch finds it from the device object alone.

#include "compiler/types.h"
#include "vexk/kernelTypes.h"

class iChildBus;

// Slot order is a promise: handleDeviceControl is the first and isChildDevice the tenth operation.
// Objects live in non-paged memory. What is not said of an operation's IRQL is PASSIVE_LEVEL.
class iDeviceHandler {
 public:
  // Serves a device control request. `input` is the caller's pointer for METHOD_NEITHER codes, and
  // `output` the request's user buffer; neither has been looked at. Both are good only in a thread
  // of the process that sent the request: the handler runs in the thread that calls the driver's
  // dispatch, which is such a one unless a driver above has queued the request. Writes how many
  // bytes it has given back into `information`, and its status into `status`; both are 0 before. A
  // negative status completes the request with STATUS_UNSUCCESSFUL.
  // `information` must not exceed `outputLength`: for METHOD_BUFFERED codes the system copies that
  // many bytes to the caller, so more would be memory of the kernel's. A child's is handed on as it
  // is; a function device cuts it.
  // IRQL <= DISPATCH_LEVEL; any number of threads at once.
  virtual void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output,
                                   u32 outputLength, u64* information, i32* status) = 0;

  // The device object; the physical device at the bottom of its stack; the device that requests are
  // passed on to, null for a device that has none below it.
  virtual _DEVICE_OBJECT* getDeviceObject() = 0;
  virtual _DEVICE_OBJECT* getPhysicalDevice() = 0;
  virtual _DEVICE_OBJECT* getLowerDevice() = 0;

  // Of a device that is a bus: the kind of bus and its number, as its children tell them.
  virtual void getBusTypeGUID(_GUID& busType) = 0;
  virtual u32 getLegacyBusNumber() = 0;

  // Where the device's children are made from now on, before the device starts; null when there is
  // no such place any more.
  virtual void attachChildBus(iChildBus* bus) = 0;

  // The device has started: the requests below it have succeeded. A negative `status` fails the
  // start request, with STATUS_INSUFFICIENT_RESOURCES for kStatusOutOfMemory and
  // STATUS_UNSUCCESSFUL for every other.
  virtual void start(i32& status) = 0;

  // The device goes: called once, by surprise or in order, before its memory does. Of a child it is
  // the last call ("vexk/iChildBus.h"); `isSurprise` is then true only if the last that the child
  // saw was a surprise removal of its own, whatever has become of its bus.
  virtual void stop(bool isSurprise) = 0;

  // Whether the device is a child that a bus has made; otherwise it is one of the platform's own.
  // Asked with every request, under a lock: answers without a call. IRQL <= DISPATCH_LEVEL.
  virtual bool isChildDevice() = 0;

 protected:
  ~iDeviceHandler() = default;
};

// The first word of every device extension of the family.
struct tDeviceExtension {
  iDeviceHandler* handler;
};
