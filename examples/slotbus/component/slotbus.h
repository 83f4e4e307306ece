#pragma once

#include "oxdiagk/tTrace.h"
#include "slotbus/component/iRackTaker.h"
#include "slotbus/component/tStatusRecord.h"

namespace nSLOTBUS100 {

// The component as its host program and its driver call it: reads the text of a rack (see
// rack.txt for its form) and traces on `trace` what it finds and what is wrong with it.
//
// `text` may hold any bytes and needs no terminator; null is allowed with length 0 only.
// Returns 0 when the rack is good, 1 when something was wrong: a bad line, a text that is not a
// rack, or exhausted memory. The statuses of what is wrong go into `record`, and the rack with its
// good lines to `taker`, unless they are null. Nothing else is kept after the call.
// IRQL: PASSIVE_LEVEL.
u32 readRackText(char const* text, size_t length, nOXDIAG100::tTrace& trace,
                 tStatusRecord* record = nullptr, iRackTaker* taker = nullptr);

}  // namespace nSLOTBUS100
