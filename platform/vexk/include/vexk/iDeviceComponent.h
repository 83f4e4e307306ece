#pragma once

// The component behind a function device ("vexk/functionDevice.h"): what a driver is about, without
// requests, stacks and device objects.

#include "compiler/types.h"
#include "vexk/api.h"

class iChildBus;

// Objects live in non-paged memory. What is not said of an operation's IRQL is PASSIVE_LEVEL.
class iDeviceComponent {
 public:
  // The device has started. `children` is where its children are made, good until stop() has
  // returned; null when the driver's dispatch provides no such place. A negative `status` fails the
  // start request, with STATUS_INSUFFICIENT_RESOURCES for kStatusOutOfMemory and
  // STATUS_UNSUCCESSFUL for every other. Comes again, without a stop() between, when the system had
  // stopped the device for a while.
  virtual void start(iChildBus* children, i32& status) = 0;

  // The device goes, by surprise or in order: told once, also of a device that never started. New
  // device controls are refused from now on; those on their way may still run, and come to their
  // end by themselves.
  virtual void stop(bool isSurprise) = 0;

  // Serves a device control of a started device. With METHOD_NEITHER codes `input` and `output` are
  // the caller's pointers, at which nobody has looked, good only in a thread of the process that
  // sent the request: this runs in the thread that calls the driver's dispatch, which is such a one
  // unless a driver above has queued the request. With METHOD_BUFFERED codes both are the kernel's
  // one copy. Writes how many bytes it gives back into `information`, and its status into `status`;
  // both are 0 before. More than `outputLength` bytes are cut to that. A negative status completes
  // the request with STATUS_UNSUCCESSFUL.
  // IRQL <= DISPATCH_LEVEL; any number of threads at once.
  virtual void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output,
                                   u32 outputLength, u64* information, i32* status) = 0;

  // The last call: no other runs or comes any more. The component may delete itself.
  virtual void release() = 0;

 protected:
  ~iDeviceComponent() = default;
};
