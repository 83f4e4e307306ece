#include "oxdiagk/iTraceDestination.h"

namespace nOXDIAG100 {

// The image has destinations and no trace stream that one of them could leave.
void iTraceDestination::leaveStream() {
}

}  // namespace nOXDIAG100
