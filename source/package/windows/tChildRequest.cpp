#include "package/windows/tChildRequest.h"

#include "package/windows/requestEnds.h"
#include "package/windows/tKernelMutexGuard.h"

namespace nOXDIAG100 {
namespace {

NTSTATUS runRow(tChildRequest& request, tChildRow* row) {
  tKernelMutexGuard const guard(request.child.mutex);
  if (request.child.states.get() == tPnpState::Deleted) return STATUS_DELETE_PENDING;
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
