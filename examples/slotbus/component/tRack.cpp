#include "slotbus/component/tRack.h"

#include "slotbus/component/component.h"

using nOXDIAG100::tStatus2;

namespace nSLOTBUS100 {

void tRack::add(tDevice const& device, tStatus2& status) {
  if (device.slot < kFirstSlot || device.slot > kLastSlot) {
    OXDIAG_SET_STATUS(status, kStatusSlotOutOfRange);
  }
  if (findSlot(device.slot) != nullptr) OXDIAG_SET_STATUS(status, kStatusSlotTaken);
  if (findInstance(device.instance) != nullptr) OXDIAG_SET_STATUS(status, kStatusInstanceTaken);
  if (status.isError()) return;
  // One device a slot, so the table has room for every device that comes so far.
  devices[count] = device;
  ++count;
}

tDevice const* tRack::findSlot(u32 slot) const {
  for (u32 index = 0; index < count; ++index) {
    if (devices[index].slot == slot) return &devices[index];
  }
  return nullptr;
}

tDevice const* tRack::findInstance(u64 instance) const {
  for (u32 index = 0; index < count; ++index) {
    if (devices[index].instance == instance) return &devices[index];
  }
  return nullptr;
}

}  // namespace nSLOTBUS100
