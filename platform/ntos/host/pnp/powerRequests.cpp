#include "io/send.h"
#include "pnp/lifecycle.h"
#include "pnp/requests.h"

// The power manager's requests.

namespace ntoshost {
namespace {

Request powerRequest(u8 minor, POWER_STATE_TYPE type, POWER_STATE state) {
  Request request;
  request.major = IRP_MJ_POWER;
  request.minor = minor;
  request.parameters.Power.Type = type;
  request.parameters.Power.State = state;
  return request;
}

POWER_STATE systemState(SYSTEM_POWER_STATE state) {
  POWER_STATE power;
  power.SystemState = state;
  return power;
}

NTSTATUS send(DEVICE_OBJECT* device, Request& request, char const* call) {
  TreeOperation const operation(call);
  Node const* const node = findNode(device);
  return node == nullptr ? STATUS_NO_SUCH_DEVICE : sendRequest(device, request);
}

void setSystemState(Node& node, SYSTEM_POWER_STATE state) {
  if (node.known.state != DeviceState::Started) return;
  Request request = powerRequest(IRP_MN_SET_POWER, SystemPowerState, systemState(state));
  sendRequestSurely(node.known.physical, request);
}

NTSTATUS querySystemState(Node& node, SYSTEM_POWER_STATE state) {
  if (node.known.state != DeviceState::Started) return STATUS_SUCCESS;
  Request request = powerRequest(IRP_MN_QUERY_POWER, SystemPowerState, systemState(state));
  NTSTATUS const status = sendRequest(node.known.physical, request);
  return status == STATUS_NOT_SUPPORTED ? STATUS_SUCCESS : status;
}

template <class Visit>
void visitRoots(Visit visit) {
  for (Node* root = firstChildOf(nullptr); root != nullptr; root = root->nextSibling) visit(*root);
}

void wakeAll() {
  visitRoots([](Node& root) {
    visitHighestFirst(root, [](Node& node) { setSystemState(node, PowerSystemWorking); });
  });
}

NTSTATUS queryAll(SYSTEM_POWER_STATE state) {
  NTSTATUS status = STATUS_SUCCESS;
  visitRoots([&](Node& root) {
    visitLowestFirst(root, [&](Node& node) {
      if (NT_SUCCESS(status)) status = querySystemState(node, state);
    });
  });
  return status;
}

void setAll(SYSTEM_POWER_STATE state) {
  visitRoots([&](Node& root) {
    visitLowestFirst(root, [&](Node& node) { setSystemState(node, state); });
  });
}

}  // namespace

NTSTATUS queryPower(DEVICE_OBJECT* device, POWER_STATE_TYPE type, POWER_STATE state) {
  Request request = powerRequest(IRP_MN_QUERY_POWER, type, state);
  return send(device, request, "queryPower");
}

NTSTATUS setPower(DEVICE_OBJECT* device, POWER_STATE_TYPE type, POWER_STATE state) {
  Request request = powerRequest(IRP_MN_SET_POWER, type, state);
  return send(device, request, "setPower");
}

NTSTATUS setSystemPower(SYSTEM_POWER_STATE state) {
  TreeOperation const operation("setSystemPower");
  NTSTATUS const status = state == PowerSystemWorking ? STATUS_SUCCESS : queryAll(state);
  if (state == PowerSystemWorking || !NT_SUCCESS(status)) {
    wakeAll();
  } else {
    setAll(state);
  }
  return status;
}

}  // namespace ntoshost
