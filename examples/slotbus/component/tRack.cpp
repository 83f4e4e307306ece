#include "slotbus/component/tRack.h"

#include "slotbus/component/component.h"

using nOXDIAG100::tStatus2;

namespace nSLOTBUS100 {

void tRack::add(tDevice const& device, tStatus2& status) {
  OXDIAG_CLASS_INVARIANT(isSound());
  if (device.slot < kFirstSlot || device.slot > kLastSlot) {
    OXDIAG_SET_STATUS(status, kStatusSlotOutOfRange);
  }
  if (findSlot(device.slot) != nullptr) OXDIAG_SET_STATUS(status, kStatusSlotTaken);
  if (findInstance(device.instance) != nullptr) OXDIAG_SET_STATUS(status, kStatusInstanceTaken);
  if (status.isError()) return;
  OXDIAG_CHECK_MESSAGE(count < kCapacity, "with one device a slot the table has room for all");
  devices[count] = device;
  ++count;
  OXDIAG_ENSURE(findSlot(device.slot) == &devices[count - 1]);
  OXDIAG_CLASS_INVARIANT(isSound());
}

tDevice const& tRack::getDevice(u32 index) const {
  OXDIAG_REQUIRE(index < count);
  return devices[index];
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

bool tRack::isSound() const {
  for (u32 index = 0; index < count && index < kCapacity; ++index) {
    if (devices[index].slot < kFirstSlot || devices[index].slot > kLastSlot) return false;
  }
  return count <= kCapacity;
}

}  // namespace nSLOTBUS100
