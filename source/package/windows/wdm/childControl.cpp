#include "package/windows/wdm/childControl.h"

#include "package/windows/wdm/requestEnds.h"
#include "package/windows/wdm/tChildDevice.h"
#include "vexkntos/tReturnWatch.h"

namespace nOXDIAG100 {
namespace {

constexpr char kControl[] = "a child device";

i32 callHandler(iDeviceHandler& handler, IRP& irp) {
  auto const& control = IoGetCurrentIrpStackLocation(&irp)->Parameters.DeviceIoControl;
  u64 information = 0;
  i32 status = 0;
  tReturnWatch const watch(kControl, sizeof(kControl) - 1);
  handler.handleDeviceControl(control.IoControlCode, control.Type3InputBuffer,
                              control.InputBufferLength, irp.UserBuffer, control.OutputBufferLength,
                              &information, &status);
  irp.IoStatus.Information = information;
  return status;
}

}  // namespace

NTSTATUS handleChildControl(DEVICE_OBJECT& device, IRP& irp) {
  tChildDevice& child = tChildDevice::of(device);
  irp.IoStatus.Information = 0;
  NTSTATUS const entered = child.enter(&irp);
  if (!NT_SUCCESS(entered)) return completeRequest(irp, entered);
  i32 const status = callHandler(*child.handler, irp);
  // Completed before the lock is left: the child's going must not overtake what it waits for.
  NTSTATUS const result = completeRequest(irp, status < 0 ? STATUS_UNSUCCESSFUL : entered);
  child.leave(&irp);
  return result;
}

}  // namespace nOXDIAG100
