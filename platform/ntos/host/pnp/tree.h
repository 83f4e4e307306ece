#pragma once

#include "io/deviceTable.h"
#include "ntoshost/pnp.h"

namespace ntoshost {

// One device of the tree, with a reference on its physical device.
struct Node {
  Node* parent;  // null: a root device
  Node* firstChild;
  Node* nextSibling;
  DeviceState before;       // what a cancel goes back to
  bool isIdentified;        // its bus was asked who it is
  bool isListedNow;         // by the enumeration under way
  bool isWaitingToGo;       // for the last handle to be closed
  bool isGoneForGood;       // a root device that was taken out of the machine
  DRIVER_OBJECT* assigned;  // to a root device; null: by its ids
  DeviceRecord known;       // read by others, so changed under the view's lock
};

// One operation at a time changes the tree: the one that has this. A thread that has it stops the
// program when it wants it once more. `call` is what the operation is called.
class TreeOperation {
 public:
  explicit TreeOperation(char const* call);
  ~TreeOperation();
  TreeOperation(TreeOperation const&) = delete;
  TreeOperation& operator=(TreeOperation const&) = delete;
};

// Held for a moment, by an operation that changes what others may see and by those who look.
class TreeView {
 public:
  TreeView();
  ~TreeView();
  TreeView(TreeView const&) = delete;
  TreeView& operator=(TreeView const&) = delete;
};

// Null when the device is not in the tree. For operations and under the view's lock.
Node* findNode(DEVICE_OBJECT const* physical);

// The head of the children of `parent`; of the root devices for null.
Node* firstChildOf(Node* parent);

// Adds a device behind its siblings. The node takes over a reference; null when memory is
// exhausted.
Node* addNode(Node* parent, DEVICE_OBJECT* physical);

// The node and all below it leave the tree and give their references back.
void dropNodes(Node* node);

void setState(Node& node, DeviceState state);

// Whether the stack may be opened.
void setOpenable(Node const& node, bool isOpenable);

u64 openFilesBelow(Node const& node);  // and of the node itself

// Calls visit(node) for all below the node and for the node itself, the lowest first.
template <class Visit>
void visitLowestFirst(Node& node, Visit visit) {
  for (Node* child = node.firstChild; child != nullptr; child = child->nextSibling) {
    visitLowestFirst(*child, visit);
  }
  visit(node);
}

// The same from the top down.
template <class Visit>
void visitHighestFirst(Node& node, Visit visit) {
  visit(node);
  for (Node* child = node.firstChild; child != nullptr; child = child->nextSibling) {
    visitHighestFirst(*child, visit);
  }
}

}  // namespace ntoshost
