#include "pnp/tree.h"

// The tree as others see it.

namespace ntoshost {
namespace {

// The head of the children, or null when the parent is not in the tree.
Node* childrenUnder(DEVICE_OBJECT* parent) {
  if (parent == nullptr) return firstChildOf(nullptr);
  Node const* const node = findNode(parent);
  return node == nullptr ? nullptr : node->firstChild;
}

u64 filesOf(DEVICE_OBJECT* device) {
  DevicesLock const lock;
  return openFilesIn(device);
}

}  // namespace

bool findDevice(DEVICE_OBJECT* device, DeviceRecord& record) {
  TreeView const view;
  Node const* const node = findNode(device);
  if (node == nullptr) return false;
  record = node->known;
  record.files = filesOf(device);
  return true;
}

u64 childrenOf(DEVICE_OBJECT* parent) {
  TreeView const view;
  u64 count = 0;
  for (Node const* node = childrenUnder(parent); node != nullptr; node = node->nextSibling) ++count;
  return count;
}

DEVICE_OBJECT* childOf(DEVICE_OBJECT* parent, u64 index) {
  TreeView const view;
  Node const* node = childrenUnder(parent);
  for (; node != nullptr && index > 0; --index) node = node->nextSibling;
  return node == nullptr ? nullptr : node->known.physical;
}

}  // namespace ntoshost
