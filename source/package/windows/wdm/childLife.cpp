#include "package/windows/wdm/childLife.h"

#include "package/windows/wdm/tParentDevice.h"

namespace nOXDIAG100 {
namespace {

NTSTATUS enter(tChildRequest& request, tPnpState state) {
  request.child.states.enter(state);
  return STATUS_SUCCESS;
}

NTSTATUS cancel(tChildRequest& request, tPnpState query) {
  request.child.states.cancel(query);
  return STATUS_SUCCESS;
}

// Its bus has taken the child away when it was not started yet, and so asked for nothing. The bus
// stays while the child's mutex is held.
void letBusAsk(tChildDevice const& child) {
  if (!child.isPresent && child.parent != nullptr) child.parent->askForRelations();
}

}  // namespace

NTSTATUS startChild(tChildRequest& request) {
  letBusAsk(request.child);
  request.child.devicePower = PowerDeviceD0;
  return enter(request, tPnpState::Started);
}

NTSTATUS queryStopChild(tChildRequest& request) {
  return enter(request, tPnpState::QueryStop);
}

NTSTATUS cancelStopChild(tChildRequest& request) {
  return cancel(request, tPnpState::QueryStop);
}

NTSTATUS stopChild(tChildRequest& request) {
  return enter(request, tPnpState::Stopped);
}

NTSTATUS queryRemoveChild(tChildRequest& request) {
  return enter(request, tPnpState::QueryRemove);
}

NTSTATUS cancelRemoveChild(tChildRequest& request) {
  return cancel(request, tPnpState::QueryRemove);
}

NTSTATUS removeChild(tChildRequest& request) {
  request.child.isRemoved = true;
  if (request.child.parent != nullptr) return enter(request, tPnpState::NotStarted);
  request.aftermath = tChildAftermath::EndDevice;
  return enter(request, tPnpState::Deleted);
}

NTSTATUS surpriseRemoveChild(tChildRequest& request) {
  letGo(request);
  return enter(request, tPnpState::SurpriseRemoved);
}

}  // namespace nOXDIAG100
