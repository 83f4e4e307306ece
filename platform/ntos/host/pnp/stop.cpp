#include "pnp/lifecycle.h"
#include "pnp/requests.h"

// A device that is to let go of its resources for a while.

namespace ntoshost {
namespace {

NTSTATUS queryStop(Node& node) {
  NTSTATUS const status = sendPnp(node.known.physical, IRP_MN_QUERY_STOP_DEVICE);
  if (NT_SUCCESS(status)) {
    setState(node, DeviceState::StopPending);
  } else {
    sendPnpSurely(node.known.physical, IRP_MN_CANCEL_STOP_DEVICE);
  }
  return status;
}

NTSTATUS cancelStop(Node& node) {
  sendPnpSurely(node.known.physical, IRP_MN_CANCEL_STOP_DEVICE);
  setState(node, DeviceState::Started);
  return STATUS_SUCCESS;
}

NTSTATUS stop(Node& node) {
  sendPnpSurely(node.known.physical, IRP_MN_STOP_DEVICE);
  setState(node, DeviceState::Stopped);
  return STATUS_SUCCESS;
}

// Takes the step when the device is in the state for it.
NTSTATUS stepFrom(DEVICE_OBJECT* device, DeviceState state, NTSTATUS (*step)(Node& node),
                  char const* call) {
  TreeOperation const operation(call);
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  return node->known.state == state ? step(*node) : STATUS_INVALID_DEVICE_REQUEST;
}

}  // namespace

NTSTATUS queryStopDevice(DEVICE_OBJECT* device) {
  return stepFrom(device, DeviceState::Started, queryStop, "queryStopDevice");
}

NTSTATUS cancelStopDevice(DEVICE_OBJECT* device) {
  return stepFrom(device, DeviceState::StopPending, cancelStop, "cancelStopDevice");
}

NTSTATUS stopDevice(DEVICE_OBJECT* device) {
  DeviceState state = DeviceState::Present;
  {
    TreeView const view;
    Node const* const node = findNode(device);
    if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
    state = node->known.state;
  }
  if (state == DeviceState::Started) {
    NTSTATUS const status = queryStopDevice(device);
    if (!NT_SUCCESS(status)) return status;
  }
  return stepFrom(device, DeviceState::StopPending, stop, "stopDevice");
}

}  // namespace ntoshost
