#include "pnp/tree.h"

#include <stdlib.h>

#include "currentThread.h"
#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "ownLock.h"
#include "schedule/scheduledThread.h"
#include "wait/heldLocks.h"

namespace ntoshost {
namespace {

constinit pthread_mutex_t g_operationLock = PTHREAD_MUTEX_INITIALIZER;
constinit KTHREAD* g_operator = nullptr;
constinit pthread_mutex_t g_viewLock = PTHREAD_MUTEX_INITIALIZER;
constinit Node* g_roots = nullptr;

// An operation calls drivers, so another thread of a schedule may ask for it meanwhile.
void awaitOperations() {
  if (g_scheduled == nullptr) {
    pthread_mutex_lock(&g_operationLock);
    return;
  }
  while (pthread_mutex_trylock(&g_operationLock) != 0) scheduleYield();
}

Node** childrenLink(Node* parent) {
  return parent == nullptr ? &g_roots : &parent->firstChild;
}

Node* findBelow(Node* first, DEVICE_OBJECT const* physical) {
  for (Node* node = first; node != nullptr; node = node->nextSibling) {
    if (node->known.physical == physical) return node;
    Node* const below = findBelow(node->firstChild, physical);
    if (below != nullptr) return below;
  }
  return nullptr;
}

void markPhysical(DEVICE_OBJECT* device, bool isPhysical) {
  DevicesLock const lock;
  recordOf(device).isPhysical = isPhysical;
  recordOf(device).isShut = isPhysical;
}

void unlink(Node* node) {
  TreeView const view;
  Node** link = childrenLink(node->parent);
  while (*link != node) link = &(*link)->nextSibling;
  *link = node->nextSibling;
}

void freeNodes(Node* node) {
  for (Node* child = node->firstChild; child != nullptr;) {
    Node* const next = child->nextSibling;
    freeNodes(child);
    child = next;
  }
  markPhysical(node->known.physical, false);
  ObfDereferenceObject(node->known.physical);
  free(node);
}

}  // namespace

TreeOperation::TreeOperation(char const* call) {
  requireNoFastMutex(call);
  requireIrqlAtMost(PASSIVE_LEVEL, call);
  if (__atomic_load_n(&g_operator, __ATOMIC_RELAXED) == currentThread()) {
    violation("%s was called from within an operation of the PnP manager.", call);
  }
  awaitOperations();
  __atomic_store_n(&g_operator, currentThread(), __ATOMIC_RELAXED);
}

TreeOperation::~TreeOperation() {
  __atomic_store_n(&g_operator, nullptr, __ATOMIC_RELAXED);
  pthread_mutex_unlock(&g_operationLock);
}

TreeView::TreeView() {
  lockOwn(g_viewLock);
}
TreeView::~TreeView() {
  unlockOwn(g_viewLock);
}

Node* findNode(DEVICE_OBJECT const* physical) {
  return findBelow(g_roots, physical);
}

Node* firstChildOf(Node* parent) {
  return *childrenLink(parent);
}

Node* addNode(Node* parent, DEVICE_OBJECT* physical) {
  Node* const node = static_cast<Node*>(calloc(1, sizeof(Node)));
  if (node == nullptr) return nullptr;
  node->parent = parent;
  node->known.physical = physical;
  node->known.parent = parent == nullptr ? nullptr : parent->known.physical;
  node->known.isListed = true;
  markPhysical(physical, true);
  TreeView const view;
  Node** link = childrenLink(parent);
  while (*link != nullptr) link = &(*link)->nextSibling;
  *link = node;
  return node;
}

void dropNodes(Node* node) {
  unlink(node);
  freeNodes(node);
}

void setState(Node& node, DeviceState state) {
  TreeView const view;
  node.known.state = state;
}

void setOpenable(Node const& node, bool isOpenable) {
  DevicesLock const lock;
  recordOf(node.known.physical).isShut = !isOpenable;
}

u64 openFilesBelow(Node const& node) {
  u64 count = 0;
  for (Node const* child = node.firstChild; child != nullptr; child = child->nextSibling) {
    count += openFilesBelow(*child);
  }
  DevicesLock const lock;
  return count + openFilesIn(node.known.physical);
}

}  // namespace ntoshost
