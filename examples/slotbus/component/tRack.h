#pragma once

#include "oxdiagk/tStatus2.h"
#include "slotbus/component/statusCodes.h"
#include "slotbus/component/tDevice.h"
#include "vexk/memory.h"

namespace nSLOTBUS100 {

// The devices of a rack, in the order in which they were added. At most one device sits in a slot
// and no two have the same instance number. The object is too large for a kernel stack: create it
// with new, which gives null when memory is exhausted. Adding allocates nothing.
//
// The devices' texts stay in the rack text, which has to outlive the rack. Not locked. Any IRQL,
// but adding at most at APC_LEVEL (a failure takes its detail from the status heap).
class tRack {
 public:
  VEX_MODULE_MEMORY

  // Fails with kStatusSlotOutOfRange, kStatusSlotTaken or kStatusInstanceTaken; the rack is then
  // unchanged. Does nothing when `status` is an error already.
  void add(tDevice const& device, nOXDIAG100::tStatus2& status);

  u32 getCount() const { return count; }

  // `index` is below getCount().
  tDevice const& getDevice(u32 index) const;

  // The device in a slot, or with an instance number; null if there is none.
  tDevice const* findSlot(u32 slot) const;
  tDevice const* findInstance(u64 instance) const;

 private:
  static constexpr u32 kCapacity = kLastSlot - kFirstSlot + 1;

  // The class invariant.
  bool isSound() const;

  u32 count = 0;
  tDevice devices[kCapacity];
};

}  // namespace nSLOTBUS100
