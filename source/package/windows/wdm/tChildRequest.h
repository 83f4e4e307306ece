#pragma once

// A plug-and-play or power request to a child device, on its way through the rows of a table. A row
// runs under the child's mutex and returns the status for the request.

#include "ntos/irp.h"
#include "package/windows/wdm/tChildDevice.h"

namespace nOXDIAG100 {

struct tChildRequest {
  tChildDevice& child;
  IRP& irp;
  IO_STACK_LOCATION const& location;
  tChildAftermath aftermath = tChildAftermath::None;
};

// The system lets go of the child: the end of its handler, when somebody waits for that. Any other
// child keeps it, as it may come back. Under the child's mutex.
inline void letGo(tChildRequest& request) {
  if (request.child.isAwaited) request.aftermath = tChildAftermath::EndHandler;
}

using tChildRow = NTSTATUS(tChildRequest& request);

// Runs a row, or for null none, which leaves the status as it has come, and does what is to be done
// behind it. A child that is deleted already is not asked: STATUS_DELETE_PENDING, but
// STATUS_SUCCESS for a removal. Returns the status; the request is not completed. PASSIVE_LEVEL.
NTSTATUS serveChild(tChildDevice& child, IRP& irp, tChildRow* row);

}  // namespace nOXDIAG100
