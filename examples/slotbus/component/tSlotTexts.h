#pragma once

#include "slotbus/component/statusCodes.h"
#include "slotbus/component/tDevice.h"
#include "vexk/iChildBus.h"
#include "vexk/memory.h"

namespace nSLOTBUS100 {

// What the system is told of a device, in the wide texts that it wants. Too large for a kernel
// stack: create it with new, and use it for one device after the other.
class tSlotTexts {
 public:
  VEX_MODULE_MEMORY

  // Makes the description of a device that is served by `handler`. Its texts are good until the
  // next call.
  tChildDescription describe(tDevice const& device, iDeviceHandler& handler);

 private:
  // An id has one character at least, and each its terminator.
  static constexpr u32 kMaxIdCount = kMaxHardwareIdsLength / 2;

  u32 splitIds(tTextSpan rest);
  wchar_t const* widen(tTextSpan text);

  wchar_t const* ids[kMaxIdCount];
  wchar_t characters[kMaxHardwareIdsLength + kMaxDescriptionLength + 1];
  u32 used = 0;  // characters
};

}  // namespace nSLOTBUS100
