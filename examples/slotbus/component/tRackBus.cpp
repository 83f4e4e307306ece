#include "slotbus/component/tRackBus.h"

#include "ntos/status.h"
#include "slotbus/component/component.h"
#include "slotbus/component/controlAnswer.h"
#include "slotbus/component/tRack.h"
#include "slotbus/component/tSlotDevice.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

namespace nSLOTBUS100 {

tRackBus::tRackBus(iRackSource& rackSource, tTrace& stream) : source(rackSource), trace(stream) {
}

void tRackBus::start(iChildBus* children, i32& /*status*/) {
  OXDIAG_REQUIRE_MESSAGE(children != nullptr, "the driver's dispatch provides the place");
  OXDIAG_BLOCK(kTraceDetail);
  bus = children;
  if (isRackRead) {
    OXDIAG_TRACE(kTraceProgress, put("the bus starts again"));
    return;
  }
  isRackRead = true;
  source.read(*this);
}

void tRackBus::take(tRack const& rack) {
  OXDIAG_REQUIRE(bus != nullptr);
  tSlotTexts* const texts = new tSlotTexts;
  for (u32 index = 0; index < rack.getCount(); ++index) show(rack.getDevice(index), texts);
  delete texts;
  OXDIAG_ENSURE(count.devices + count.failures == rack.getCount());
  OXDIAG_TRACE(kTraceProgress, putf("devices on the bus: %u", count.devices));
}

void tRackBus::show(tDevice const& device, tSlotTexts* texts) {
  tStatus2 status;
  OXDIAG_BLOCK_STATUS(kTraceDetail, nullptr, &status);
  tSlotDevice* const slot = texts == nullptr ? nullptr : new tSlotDevice(device, trace);
  if (slot == nullptr) {
    OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  } else {
    slot->join(*bus, device, *texts, status);
  }
  if (!status.isError()) {
    ++count.devices;
    return;
  }
  ++count.failures;
  OXDIAG_TRACE(kTraceFailure,
               putf("slot %u cannot be shown to the system", device.slot).put(status));
}

void tRackBus::stop(bool /*isSurprise*/) {
  OXDIAG_TRACE(kTraceProgress, put("the bus stops"));
  bus = nullptr;
}

void tRackBus::handleDeviceControl(u32 code, void*, u32, void* output, u32 outputLength,
                                   u64* information, i32* status) {
  OXDIAG_REQUIRE_MESSAGE(isRackRead, "the platform asks a started bus only");
  tStatus2 result;
  OXDIAG_BLOCK_STATUS(kTraceDetail, nullptr, &result);
  if (code != kControlCountDevices) OXDIAG_SET_STATUS(result, STATUS_INVALID_DEVICE_REQUEST);
  *information = giveAnswer(&count, sizeof(count), {output, outputLength}, result);
  *status = result.getCode();
  if (result.isError()) {
    OXDIAG_TRACE(kTraceFailure, putf("the bus refuses the request %08X", code).put(result));
    return;
  }
  OXDIAG_TRACE(kTraceDevice, putf("the bus tells its %u devices", count.devices));
}

}  // namespace nSLOTBUS100
