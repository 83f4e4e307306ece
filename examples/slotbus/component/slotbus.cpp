#include "slotbus/component/slotbus.h"

#include "slotbus/component/component.h"
#include "slotbus/component/tRackReader.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

namespace nSLOTBUS100 {

u32 readRackText(char const* text, size_t length, tTrace& trace, tStatusRecord* record,
                 iRackTaker* taker) {
  OXDIAG_REQUIRE(text != nullptr || length == 0);
  tRack* const rack = new tRack;
  if (rack == nullptr) {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
    OXDIAG_TRACE(kTraceFailure, put("no memory for the rack").put(status));
    return 1;
  }
  tRackReader reader(*rack, trace, record);
  u32 const result = reader.read(tTextSpan(text, length));
  if (taker != nullptr) taker->take(*rack);
  delete rack;
  return result;
}

}  // namespace nSLOTBUS100
