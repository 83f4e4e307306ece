#pragma once

#include "oxdiagk/tStatus2.h"
#include "slotbus/component/tTextSpan.h"

namespace nSLOTBUS100 {

// Where in the text of a rack something is wrong.
struct tFailurePlace {
  u32 line = 0;         // from 1; 0 when it is the whole text
  tTextSpan offence;    // the text in question
  u32 earlierLine = 0;  // the line that came first, for what is taken twice; otherwise 0
};

// Attaches to the error in `status`, one of tStatusCode, a description of what is wrong where, what
// would be right, on which bus and when: the items of "reportNumbers.h". Without memory for it the
// status stays without description. Does nothing when `status` is no error. IRQL <= APC_LEVEL.
void describeFailure(tFailurePlace const& place, nOXDIAG100::tStatus2& status);

}  // namespace nSLOTBUS100
