#include "package/windows/wdm/tChildRequest.h"

#include "package/windows/wdm/requestEnds.h"
#include "vexkntos/tKernelMutexGuard.h"

namespace nOXDIAG100 {
namespace {

// A removal finds done what it is for: the bus has deleted the child as it went.
NTSTATUS answerDeleted(IO_STACK_LOCATION const& location) {
  bool const isRemoval =
      location.MajorFunction == IRP_MJ_PNP && location.MinorFunction == IRP_MN_REMOVE_DEVICE;
  return isRemoval ? STATUS_SUCCESS : STATUS_DELETE_PENDING;
}

NTSTATUS runRow(tChildRequest& request, tChildRow* row) {
  tKernelMutexGuard const guard(request.child.mutex);
  if (request.child.states.get() == tPnpState::Deleted) return answerDeleted(request.location);
  return row == nullptr ? keepStatus(request.irp) : row(request);
}

}  // namespace

NTSTATUS serveChild(tChildDevice& child, IRP& irp, tChildRow* row) {
  tChildRequest request = {child, irp, *IoGetCurrentIrpStackLocation(&irp)};
  NTSTATUS const status = runRow(request, row);
  child.finish(request.aftermath);
  return status;
}

}  // namespace nOXDIAG100
