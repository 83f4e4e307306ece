#pragma once

#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "slotbus/component/slotControl.h"
#include "slotbus/component/tDevice.h"
#include "slotbus/component/tSlotTexts.h"
#include "vexk/iChildBus.h"
#include "vexk/iChildHandler.h"
#include "vexk/memory.h"

namespace nSLOTBUS100 {

// The device in one slot of the rack, as the system's requests meet it. It keeps its own copy of
// its line, and lives as long as the system has it: longer than the bus, when a program has it open
// while the rack goes.
class tSlotDevice final : public iChildHandler {
 public:
  VEX_MODULE_MEMORY

  tSlotDevice(tDevice const& device, nOXDIAG100::tTrace& stream);
  tSlotDevice(tSlotDevice const&) = delete;
  tSlotDevice& operator=(tSlotDevice const&) = delete;

  // Becomes a child of the bus, and from then on the system's: the caller does not use the object
  // any more, whatever the status. `device` is the one it was made from. Fails with the codes of
  // iChildBus::createChild. PASSIVE_LEVEL.
  void join(iChildBus& bus, tDevice const& device, tSlotTexts& texts, nOXDIAG100::tStatus2& status);

  // Serves kControlTellLine. PASSIVE_LEVEL.
  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;
  void stop(bool isSurprise) override;

 private:
  nOXDIAG100::tTrace& trace;
  tSlotLine line = {};
  bool isJoined = false;
};

}  // namespace nSLOTBUS100
