// Where the requests to the module's devices go.

#include "ntos/driver.h"
#include "oxdiagk/package.h"
#include "package/windows/wdm/busPnp.h"
#include "package/windows/wdm/childControl.h"
#include "package/windows/wdm/childPnp.h"
#include "package/windows/wdm/childPower.h"
#include "package/windows/wdm/handlerSlot.h"
#include "package/windows/wdm/requestEnds.h"
#include "vexk/dispatch.h"

namespace nOXDIAG100 {
namespace {

using tServe = NTSTATUS(DEVICE_OBJECT& device, IRP& irp);

NTSTATUS refuseChild(DEVICE_OBJECT& /*device*/, IRP& irp) {
  return completeRequest(irp, STATUS_INVALID_DEVICE_REQUEST);
}

NTSTATUS keepChild(DEVICE_OBJECT& /*device*/, IRP& irp) {
  return completeRequest(irp, keepStatus(irp));
}

NTSTATUS passBus(DEVICE_OBJECT& device, IRP& irp) {
  return vexDispatch(&device, &irp);
}

NTSTATUS passBusPower(DEVICE_OBJECT& device, IRP& irp) {
  return vexDispatchPower(&device, &irp);
}

NTSTATUS passBusSystemControl(DEVICE_OBJECT& device, IRP& irp) {
  return vexDispatchSystemControl(&device, &irp);
}

NTSTATUS openBus(DEVICE_OBJECT& device, IRP& irp) {
  if (pkgWDMWrapperCallSSMain(kModuleOpen) >= 0) return vexDispatch(&device, &irp);
  return completeRequest(irp, STATUS_DRIVER_INTERNAL_ERROR);
}

NTSTATUS closeBus(DEVICE_OBJECT& device, IRP& irp) {
  pkgWDMWrapperCallSSMain(kModuleClose);
  return vexDispatch(&device, &irp);
}

struct tDispatchRow {
  tServe* child = &refuseChild;
  tServe* bus = &passBus;
};

// By major code; what has no row of its own a child refuses and the platform gets.
struct tDispatchTable {
  tDispatchRow rows[IRP_MJ_MAXIMUM_FUNCTION + 1] = {};

  constexpr tDispatchTable() {
    rows[IRP_MJ_CREATE] = {&refuseChild, &openBus};
    rows[IRP_MJ_CLEANUP] = {&refuseChild, &closeBus};
    rows[IRP_MJ_DEVICE_CONTROL] = {&handleChildControl, &passBus};
    rows[IRP_MJ_INTERNAL_DEVICE_CONTROL] = {&handleChildControl, &passBus};
    rows[IRP_MJ_POWER] = {&handleChildPower, &passBusPower};
    rows[IRP_MJ_SYSTEM_CONTROL] = {&keepChild, &passBusSystemControl};
    rows[IRP_MJ_PNP] = {&handleChildPnp, &handleBusPnp};
  }
};

constexpr tDispatchTable table;

}  // namespace
}  // namespace nOXDIAG100

NTSTATUS pkgWDMWrapperHandleIrp(DEVICE_OBJECT* device, IRP* irp) {
  using namespace nOXDIAG100;
  u8 const major = IoGetCurrentIrpStackLocation(irp)->MajorFunction;
  if (major > IRP_MJ_MAXIMUM_FUNCTION) return STATUS_UNSUCCESSFUL;
  tDispatchRow const& row = table.rows[major];
  tServe* const serve = isChildDevice(*device) ? row.child : row.bus;
  return serve(*device, *irp);
}
