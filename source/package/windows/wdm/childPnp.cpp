#include "package/windows/wdm/childPnp.h"

#include "package/windows/wdm/childAnswers.h"
#include "package/windows/wdm/childCapabilities.h"
#include "package/windows/wdm/childLife.h"
#include "package/windows/wdm/requestEnds.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kMinorCount = IRP_MN_SURPRISE_REMOVAL + 1;

NTSTATUS refuse(tChildRequest& /*request*/) {
  return STATUS_UNSUCCESSFUL;
}

// By minor code; a null row keeps the status with which the request has come.
struct tPnpTable {
  tChildRow* rows[kMinorCount] = {};

  constexpr tPnpTable() {
    rows[IRP_MN_START_DEVICE] = &startChild;
    rows[IRP_MN_QUERY_REMOVE_DEVICE] = &queryRemoveChild;
    rows[IRP_MN_REMOVE_DEVICE] = &removeChild;
    rows[IRP_MN_CANCEL_REMOVE_DEVICE] = &cancelRemoveChild;
    rows[IRP_MN_STOP_DEVICE] = &stopChild;
    rows[IRP_MN_QUERY_STOP_DEVICE] = &queryStopChild;
    rows[IRP_MN_CANCEL_STOP_DEVICE] = &cancelStopChild;
    rows[IRP_MN_QUERY_DEVICE_RELATIONS] = &tellRelations;
    rows[IRP_MN_QUERY_CAPABILITIES] = &tellCapabilities;
    rows[IRP_MN_QUERY_RESOURCE_REQUIREMENTS] = &tellNoRequirements;
    rows[IRP_MN_QUERY_DEVICE_TEXT] = &tellText;
    rows[IRP_MN_QUERY_ID] = &tellId;
    rows[IRP_MN_QUERY_BUS_INFORMATION] = &tellBusInformation;
    rows[IRP_MN_DEVICE_USAGE_NOTIFICATION] = &refuse;
    rows[IRP_MN_SURPRISE_REMOVAL] = &surpriseRemoveChild;
  }

  constexpr tChildRow* find(u8 minor) const { return minor < kMinorCount ? rows[minor] : nullptr; }
};

constexpr tPnpTable table;

}  // namespace

NTSTATUS handleChildPnp(DEVICE_OBJECT& device, IRP& irp) {
  u8 const minor = IoGetCurrentIrpStackLocation(&irp)->MinorFunction;
  return completeRequest(irp, serveChild(tChildDevice::of(device), irp, table.find(minor)));
}

}  // namespace nOXDIAG100
