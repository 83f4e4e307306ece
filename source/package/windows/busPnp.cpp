#include "package/windows/busPnp.h"

#include "package/windows/requestEnds.h"
#include "package/windows/wdmWrapperState.h"
#include "vexk/dispatch.h"

namespace nOXDIAG100 {
namespace {

NTSTATUS startBus(DEVICE_OBJECT& device, IRP& irp) {
  if (wdmParents.find(device) == nullptr) {
    tParentDevice* const parent = wdmParents.create(device);
    if (parent == nullptr) return completeRequest(irp, STATUS_INSUFFICIENT_RESOURCES);
    vexHandlerOf(device).attachChildBus(parent);
  }
  return vexDispatchPnp(&device, &irp);
}

// The record is closed and out of the list before its device goes, whose address the next one may
// have.
NTSTATUS removeBus(DEVICE_OBJECT& device, IRP& irp) {
  tParentDevice* const parent = wdmParents.find(device);
  if (parent == nullptr) return vexDispatchPnp(&device, &irp);
  parent->dismissChildren();
  wdmParents.remove(*parent);
  vexHandlerOf(device).attachChildBus(nullptr);
  parent->close();
  NTSTATUS const status = vexDispatchPnp(&device, &irp);
  parent->destroy();
  return status;
}

NTSTATUS surpriseRemoveBus(DEVICE_OBJECT& device, IRP& irp) {
  tParentDevice* const parent = wdmParents.find(device);
  if (parent != nullptr) parent->dismissChildren();
  return vexDispatchPnp(&device, &irp);
}

NTSTATUS tellBusRelations(DEVICE_OBJECT& device, IRP& irp) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&irp);
  bool const isOurs = location.Parameters.QueryDeviceRelations.Type == BusRelations;
  tParentDevice* const parent = isOurs ? wdmParents.find(device) : nullptr;
  if (parent == nullptr) return vexDispatchPnp(&device, &irp);
  NTSTATUS const status = parent->addRelations(irp);
  if (!NT_SUCCESS(status)) return completeRequest(irp, status);
  irp.IoStatus.Status = status;
  return vexDispatchPnp(&device, &irp);
}

}  // namespace

NTSTATUS handleBusPnp(DEVICE_OBJECT& device, IRP& irp) {
  switch (IoGetCurrentIrpStackLocation(&irp)->MinorFunction) {
    case IRP_MN_START_DEVICE:
      return startBus(device, irp);
    case IRP_MN_REMOVE_DEVICE:
      return removeBus(device, irp);
    case IRP_MN_SURPRISE_REMOVAL:
      return surpriseRemoveBus(device, irp);
    case IRP_MN_QUERY_DEVICE_RELATIONS:
      return tellBusRelations(device, irp);
    default:
      return vexDispatchPnp(&device, &irp);
  }
}

}  // namespace nOXDIAG100
