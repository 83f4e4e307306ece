#include "oxdiagk/iTraceDestination.h"
#include "trace/mayEnd.h"

namespace nOXDIAG100 {

// The image has destinations and no trace stream that one of them could leave, or be used by.
void iTraceDestination::leaveStream() {
}

bool mayEnd(iTraceDestination const&) {
  return true;
}

}  // namespace nOXDIAG100
