#include "package/windows/wdm/busPnp.h"

#include "package/windows/wdm/requestEnds.h"
#include "package/windows/wdm/tParentList.h"
#include "vexk/dispatch.h"
#include "vexkntos/droppedRelations.h"
#include "vexkntos/handlerOf.h"

namespace nOXDIAG100 {
namespace {

NTSTATUS startBus(DEVICE_OBJECT& device, IRP& irp) {
  tParentDevice* const parent = wdmParents.provide(device);
  if (parent == nullptr) return completeRequest(irp, STATUS_INSUFFICIENT_RESOURCES);
  vexHandlerOf(device).attachChildBus(parent);
  parent->leave();
  return vexDispatchPnp(&device, &irp);
}

// The record is out of the list before its device goes, whose address the next one may have, and
// stays until the platform has done with it.
NTSTATUS removeBus(DEVICE_OBJECT& device, IRP& irp) {
  tParentDevice* const parent = wdmParents.take(device);
  if (parent == nullptr) return vexDispatchPnp(&device, &irp);
  parent->dismissChildren(tBusEnd::InOrder);
  parent->close();
  vexHandlerOf(device).attachChildBus(nullptr);
  NTSTATUS const status = vexDispatchPnp(&device, &irp);
  parent->destroy();
  return status;
}

NTSTATUS surpriseRemoveBus(DEVICE_OBJECT& device, IRP& irp) {
  tParentDevice* const parent = wdmParents.enter(device);
  if (parent != nullptr) {
    parent->dismissChildren(tBusEnd::BySurprise);
    parent->leave();
  }
  return vexDispatchPnp(&device, &irp);
}

// The platform waits for those below, so its status is the final one.
NTSTATUS passRelations(DEVICE_OBJECT& device, IRP& irp, tParentDevice& parent) {
  tChildReport report;
  NTSTATUS status = parent.addRelations(irp, report);
  if (!NT_SUCCESS(status)) {
    vexDropRelations(irp);
    return completeRequest(irp, status);
  }
  irp.IoStatus.Status = status;
  status = vexDispatchPnp(&device, &irp);
  parent.settle(report, NT_SUCCESS(status));
  return status;
}

NTSTATUS tellBusRelations(DEVICE_OBJECT& device, IRP& irp) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&irp);
  bool const isOurs = location.Parameters.QueryDeviceRelations.Type == BusRelations;
  tParentDevice* const parent = isOurs ? wdmParents.enter(device) : nullptr;
  if (parent == nullptr) return vexDispatchPnp(&device, &irp);
  NTSTATUS const status = passRelations(device, irp, *parent);
  parent->leave();
  return status;
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
