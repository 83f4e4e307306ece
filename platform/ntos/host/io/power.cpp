#include "io/requestTable.h"
#include "irqlCheck.h"
#include "ntoshost/pnp.h"
#include "ntoshost/violation.h"

// What drivers tell the power manager.

namespace ntoshost {
namespace {

POWER_STATE& stateOf(DEVICE_OBJECT* device, POWER_STATE_TYPE type) {
  DEVOBJ_EXTENSION& record = recordOf(device);
  return type == SystemPowerState ? record.systemState : record.deviceState;
}

void requirePowerLocation(IO_STACK_LOCATION const& location, IRP* request, char const* call) {
  if (location.MajorFunction == IRP_MJ_POWER) return;
  violation("%s was given the request at %p, which is no power request.", call,
            static_cast<void*>(request));
}

void requireLive(IRP* request, char const* call) {
  RequestsLock const lock;
  requireRequest(request, call);
}

}  // namespace

POWER_STATE powerStateOf(DEVICE_OBJECT* device, POWER_STATE_TYPE type) {
  DevicesLock const lock;
  requireDevice(device, "powerStateOf");
  return stateOf(device, type);
}

}  // namespace ntoshost

POWER_STATE PoSetPowerState(DEVICE_OBJECT* device, POWER_STATE_TYPE type, POWER_STATE state) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "PoSetPowerState");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(device, "PoSetPowerState");
  POWER_STATE& kept = ntoshost::stateOf(device, type);
  POWER_STATE const before = kept;
  kept = state;
  return before;
}

void PoStartNextPowerIrp(IRP* request) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "PoStartNextPowerIrp");
  ntoshost::requireLive(request, "PoStartNextPowerIrp");
  if (request->CurrentLocation > request->StackCount) return;
  ntoshost::requirePowerLocation(*IoGetCurrentIrpStackLocation(request), request,
                                 "PoStartNextPowerIrp");
}

NTSTATUS PoCallDriver(DEVICE_OBJECT* device, IRP* request) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "PoCallDriver");
  ntoshost::requireLive(request, "PoCallDriver");
  if (request->CurrentLocation > 1) {
    ntoshost::requirePowerLocation(*IoGetNextIrpStackLocation(request), request, "PoCallDriver");
  }
  return IofCallDriver(device, request);
}
