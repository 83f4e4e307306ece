#include "slotbus/component/tSlotDevice.h"

#include "ntos/status.h"
#include "slotbus/component/component.h"
#include "slotbus/component/controlAnswer.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

namespace nSLOTBUS100 {

tSlotDevice::tSlotDevice(tDevice const& device, tTrace& stream) : trace(stream) {
  OXDIAG_REQUIRE(device.description.getLength() <= kMaxDescriptionLength);
  line.lineNumber = device.lineNumber;
  line.slot = device.slot;
  line.instance = device.instance;
  for (size_t index = 0; index < device.description.getLength(); ++index) {
    line.description[index] = device.description[index];
  }
}

void tSlotDevice::join(iChildBus& bus, tDevice const& device, tSlotTexts& texts, tStatus2& status) {
  OXDIAG_REQUIRE_MESSAGE(!isJoined, "a device sits on one bus");
  isJoined = true;  // requests may come before the bus returns
  i32 created = 0;
  bus.createChild(texts.describe(device, *this), created);
  if (created >= 0) return;
  OXDIAG_SET_STATUS(status, created);
  delete this;
}

void tSlotDevice::handleDeviceControl(u32 code, void*, u32, void* output, u32 outputLength,
                                      u64* information, i32* status) {
  OXDIAG_REQUIRE_MESSAGE(isJoined, "a device that is on no bus has no requests");
  tStatus2 result;
  OXDIAG_BLOCK_STATUS(kTraceDetail, nullptr, &result);
  if (code != kControlTellLine) OXDIAG_SET_STATUS(result, STATUS_INVALID_DEVICE_REQUEST);
  *information = giveAnswer(&line, sizeof(line), {output, outputLength}, result);
  *status = result.getCode();
  if (result.isError()) {
    OXDIAG_TRACE(kTraceFailure,
                 putf("slot %u refuses the request %08X", line.slot, code).put(result));
    return;
  }
  OXDIAG_TRACE(
      kTraceDevice,
      putf("slot %u tells its line %u: ", line.slot, line.lineNumber).put(line.description));
}

void tSlotDevice::stop(bool /*isSurprise*/) {
  delete this;
}

}  // namespace nSLOTBUS100
