#include "package/windows/wdm/childPower.h"

#include "package/windows/wdm/requestEnds.h"
#include "package/windows/wdm/tChildRequest.h"

namespace nOXDIAG100 {
namespace {

NTSTATUS setDevicePower(tChildRequest& request, POWER_STATE state) {
  tChildDevice& child = request.child;
  PoSetPowerState(child.device, DevicePowerState, state);
  bool const isChange = child.devicePower != state.DeviceState;
  child.devicePower = state.DeviceState;
  if (isChange && state.DeviceState != PowerDeviceD0) letGo(request);
  return STATUS_SUCCESS;
}

NTSTATUS setPower(tChildRequest& request) {
  auto const& power = request.location.Parameters.Power;
  if (power.Type == DevicePowerState) return setDevicePower(request, power.State);
  if (power.Type != SystemPowerState) return STATUS_NOT_SUPPORTED;
  request.child.systemPower = power.State.SystemState;
  return STATUS_SUCCESS;
}

NTSTATUS agree(tChildRequest& /*request*/) {
  return STATUS_SUCCESS;
}

tChildRow* findRow(u8 minor) {
  if (minor == IRP_MN_SET_POWER) return &setPower;
  return minor == IRP_MN_QUERY_POWER ? &agree : nullptr;
}

}  // namespace

// What is not supported here leaves the status to those above.
NTSTATUS handleChildPower(DEVICE_OBJECT& device, IRP& irp) {
  u8 const minor = IoGetCurrentIrpStackLocation(&irp)->MinorFunction;
  NTSTATUS const status = serveChild(tChildDevice::of(device), irp, findRow(minor));
  PoStartNextPowerIrp(&irp);
  return completeRequest(irp, status == STATUS_NOT_SUPPORTED ? keepStatus(irp) : status);
}

}  // namespace nOXDIAG100
