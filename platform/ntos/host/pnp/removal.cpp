#include "pnp/removal.h"

#include "ntoshost/violation.h"
#include "pnp/lifecycle.h"
#include "pnp/requests.h"

// From a device that runs to one that is no more.

namespace ntoshost {
namespace {

constinit u64 g_waiting = 0;  // nodes that wait to go

bool isRunning(Node const& node) {
  DeviceState const state = node.known.state;
  return state != DeviceState::Present && state != DeviceState::Failed &&
         state != DeviceState::SurpriseRemoved;
}

void requireBare(Node const& node) {
  DEVICE_OBJECT* const device = node.known.physical;
  DevicesLock const lock;
  if (device->AttachedDevice == nullptr) return;
  violation("The device at %p is still attached to the one at %p after the remove request.",
            static_cast<void*>(device->AttachedDevice), static_cast<void*>(device));
}

void setWaiting(Node& node, bool isWaiting) {
  if (node.isWaitingToGo == isWaiting) return;
  node.isWaitingToGo = isWaiting;
  __atomic_add_fetch(&g_waiting, isWaiting ? u64{1} : ~u64{0}, __ATOMIC_SEQ_CST);
}

void sendSurprise(Node& node) {
  setOpenable(node, false);
  if (!isRunning(node)) return;
  sendPnpSurely(node.known.physical, IRP_MN_SURPRISE_REMOVAL);
  setState(node, DeviceState::SurpriseRemoved);
}

void dropChildren(Node& node) {
  while (node.firstChild != nullptr) {
    setWaiting(*node.firstChild, false);
    dropNodes(node.firstChild);
  }
}

// The remove requests for the node and all below, which leave the tree.
void removeAll(Node& node) {
  visitLowestFirst(node, sendRemove);
  visitLowestFirst(node, [](Node& each) { setWaiting(each, false); });
  dropChildren(node);
}

bool isGone(Node const& node) {
  return node.isGoneForGood || !node.known.isListed;
}

void finishRemoval(Node& node) {
  removeAll(node);
  if (!isGone(node)) return;
  DEVICE_OBJECT* const root = node.parent == nullptr ? node.known.physical : nullptr;
  dropNodes(&node);
  if (root != nullptr) deleteRootDevice(root);
}

// The highest node below `first` that waits and has no open files any more.
Node* findReady(Node* first) {
  for (Node* node = first; node != nullptr; node = node->nextSibling) {
    if (node->isWaitingToGo && openFilesBelow(*node) == 0) return node;
    Node* const below = findReady(node->firstChild);
    if (below != nullptr) return below;
  }
  return nullptr;
}

void cancelRemove(Node& node) {
  visitHighestFirst(node, [](Node& each) {
    if (each.known.state != DeviceState::RemovePending) return;
    sendPnpSurely(each.known.physical, IRP_MN_CANCEL_REMOVE_DEVICE);
    setState(each, each.before);
    setOpenable(each, true);
  });
}

// Asks one device, unless one before it has refused.
NTSTATUS askToGo(Node& node) {
  if (!isRunning(node) || node.known.state == DeviceState::RemovePending) return STATUS_SUCCESS;
  node.before = node.known.state;
  NTSTATUS const status = sendPnp(node.known.physical, IRP_MN_QUERY_REMOVE_DEVICE);
  setState(node, DeviceState::RemovePending);
  return status;
}

void reopen(Node& node) {
  visitLowestFirst(node, [](Node& each) { setOpenable(each, isRunning(each)); });
}

NTSTATUS queryRemove(Node& node) {
  visitLowestFirst(node, [](Node& each) { setOpenable(each, false); });
  if (openFilesBelow(node) != 0) {
    reopen(node);
    return STATUS_DEVICE_BUSY;
  }
  NTSTATUS status = STATUS_SUCCESS;
  visitLowestFirst(node, [&status](Node& each) {
    if (NT_SUCCESS(status)) status = askToGo(each);
  });
  if (NT_SUCCESS(status)) return STATUS_SUCCESS;
  cancelRemove(node);
  reopen(node);
  return status;
}

NTSTATUS removeNode(Node& node) {
  if (node.known.state == DeviceState::SurpriseRemoved) return STATUS_DEVICE_BUSY;
  if (node.known.state != DeviceState::RemovePending) {
    NTSTATUS const status = queryRemove(node);
    if (!NT_SUCCESS(status)) return status;
  }
  removeAll(node);
  return STATUS_SUCCESS;
}

}  // namespace

void sendRemove(Node& node) {
  setOpenable(node, false);
  sendPnpSurely(node.known.physical, IRP_MN_REMOVE_DEVICE);
  requireBare(node);
  TreeView const view;
  node.known.driver = nullptr;
  node.known.state = DeviceState::Present;
}

void surpriseRemove(Node& node) {
  visitLowestFirst(node, sendSurprise);
  if (openFilesBelow(node) == 0) return finishRemoval(node);
  setWaiting(node, true);
}

void removeWhatWaited() {
  if (__atomic_load_n(&g_waiting, __ATOMIC_SEQ_CST) == 0) return;
  TreeOperation const operation("closeDevice");
  for (;;) {
    Node* const node = findReady(firstChildOf(nullptr));
    if (node == nullptr) return;
    finishRemoval(*node);
  }
}

NTSTATUS queryRemoveDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("queryRemoveDevice");
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  return isRunning(*node) ? queryRemove(*node) : STATUS_INVALID_DEVICE_REQUEST;
}

NTSTATUS cancelRemoveDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("cancelRemoveDevice");
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  if (node->known.state != DeviceState::RemovePending) return STATUS_INVALID_DEVICE_REQUEST;
  cancelRemove(*node);
  return STATUS_SUCCESS;
}

NTSTATUS removeDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("removeDevice");
  Node* const node = findNode(device);
  return node == nullptr ? STATUS_NO_SUCH_DEVICE : removeNode(*node);
}

NTSTATUS surpriseRemoveDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("surpriseRemoveDevice");
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  if (node->parent == nullptr) node->isGoneForGood = true;
  surpriseRemove(*node);
  return STATUS_SUCCESS;
}

NTSTATUS removeRootDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("removeRootDevice");
  Node* const node = findNode(device);
  if (node == nullptr || node->parent != nullptr) return STATUS_NO_SUCH_DEVICE;
  NTSTATUS const status = removeNode(*node);
  if (!NT_SUCCESS(status)) return status;
  dropNodes(node);
  deleteRootDevice(device);
  return STATUS_SUCCESS;
}

}  // namespace ntoshost
