// What owns something or is the one of its kind cannot be copied.

#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "stl/utility.h"
#include "vexk/sync.h"
#include "vexk/tMemBlockReferenceBase.h"

void copies(nOXDIAG100::tTrace& trace, nOXDIAG100::tAssertConfiguration& contracts,
            nOXDIAG100::tTraceFilter& filter, nOXDIAG100::tTraceFilter& other,
            tMemBlockReferenceBase& block, tSyncLock& lock) {
  nOXDIAG100::tTrace second(trace);                    // expect-error: deleted
  nOXDIAG100::tAssertConfiguration others(contracts);  // expect-error: deleted
  nOXDIAG100::tTraceFilter same(filter);               // expect-error: deleted
  filter = other;                                      // expect-error: deleted
  tMemBlockReferenceBase shared(block);                // expect-error: deleted
  tMemBlockReferenceBase moved(_STL::move(block));
  tSyncLock again(lock);  // expect-error: deleted
}
