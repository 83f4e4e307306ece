#pragma once

#include "ntos/types.h"
#include "slotbus/component/tTextSpan.h"

namespace nSLOTBUS100 {

// One device of a rack, as its line describes it. The texts point into the rack text, which has
// to live as long as the device is used.
struct tDevice {
  u32 slot = 0;           // kFirstSlot..kLastSlot
  u64 instance = 0;       // unique in the rack; usually the serial number
  tTextSpan hardwareIds;  // separated by commas, the most specific first; at least one
  tTextSpan description;  // 1..kMaxDescriptionLength characters
  u32 lineNumber = 0;     // where the rack text describes it, counted from 1

  // Cuts the next hardware id off `ids`, which starts as a copy of `hardwareIds`; an empty text
  // when there is none left:
  //
  //     tTextSpan ids = device.hardwareIds;
  //     while (!ids.isEmpty()) {
  //       use(tDevice::takeHardwareId(ids));
  //     }
  static tTextSpan takeHardwareId(tTextSpan& ids) { return ids.takeUntil(',').getTrimmed(); }
};

}  // namespace nSLOTBUS100
