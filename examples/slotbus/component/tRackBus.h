#pragma once

#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "slotbus/component/iRackSource.h"
#include "slotbus/component/iRackTaker.h"
#include "slotbus/component/slotControl.h"
#include "slotbus/component/tDevice.h"
#include "slotbus/component/tSlotTexts.h"
#include "vexk/iDeviceComponent.h"
#include "vexk/memory.h"

namespace nSLOTBUS100 {

// A rack as the system's bus: when it starts, it reads its rack and shows a device for every good
// line. Made in AddDevice, and deletes itself when the platform releases it.
class tRackBus final : public iDeviceComponent, private iRackTaker {
 public:
  VEX_MODULE_MEMORY

  // Both outlive the bus.
  tRackBus(iRackSource& rackSource, nOXDIAG100::tTrace& stream);
  tRackBus(tRackBus const&) = delete;
  tRackBus& operator=(tRackBus const&) = delete;

  // Starts whatever is wrong with the rack: a bus that refused to start over a line of text would
  // take the good devices with it. The rack is read at the first start.
  void start(iChildBus* children, i32& status) override;
  void stop(bool isSurprise) override;

  // Serves kControlCountDevices. PASSIVE_LEVEL.
  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;
  void release() override { delete this; }

 private:
  void take(tRack const& rack) override;
  void show(tDevice const& device, tSlotTexts* texts);

  iRackSource& source;
  nOXDIAG100::tTrace& trace;
  iChildBus* bus = nullptr;
  bool isRackRead = false;
  tBusCount count = {};
};

}  // namespace nSLOTBUS100
