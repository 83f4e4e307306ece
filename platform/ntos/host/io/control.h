#pragma once

#include "ntoshost/devices.h"

namespace ntoshost {

// What a device control puts into its request. `isInternal` makes it an internal one.
struct ControlCall {
  u32 code;
  void* input;
  u32 inputLength;
  void* output;
  u32 outputLength;
  bool isInternal;
};

constexpr u32 methodOf(u32 controlCode) {
  return controlCode & 3;
}

// Fills the request's first location and its buffers. False when memory is exhausted.
bool fillControl(IRP* request, ControlCall const& control);

// Waits for what was sent, if its dispatch returned STATUS_PENDING.
void awaitCompletion(KEVENT& event, NTSTATUS dispatched, u8 major, u8 minor, DEVICE_OBJECT* device);

}  // namespace ntoshost
