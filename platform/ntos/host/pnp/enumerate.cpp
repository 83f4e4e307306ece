#include "ntoshost/violation.h"
#include "pnp/lifecycle.h"
#include "pnp/requests.h"
#include "pool/answers.h"

// What a bus lists, compared with what the tree has below it.

namespace ntoshost {
namespace {

void setListed(Node& node, bool isListed) {
  TreeView const view;
  node.known.isListed = isListed;
}

void forgetListing(Node& bus) {
  for (Node* child = bus.firstChild; child != nullptr; child = child->nextSibling) {
    child->isListedNow = false;
  }
}

// Takes over the reference that came with the device. False when memory is exhausted.
bool list(Node& bus, DEVICE_OBJECT* device) {
  Node* node = findNode(device);
  if (node == nullptr) {
    node = addNode(&bus, device);
    if (node != nullptr) node->isListedNow = true;
    if (node == nullptr) ObfDereferenceObject(device);
    return node != nullptr;
  }
  if (node->parent != &bus || node->isListedNow) {
    violation("The bus at %p lists the device at %p, which is listed already.",
              static_cast<void*>(bus.known.physical), static_cast<void*>(device));
  }
  node->isListedNow = true;
  ObfDereferenceObject(device);
  return true;
}

bool listAll(Node& bus, DEVICE_RELATIONS* relations) {
  if (relations == nullptr) return true;
  bool isWhole = true;
  for (u32 i = 0; i < relations->Count; ++i) {
    if (!list(bus, relations->Objects[i])) isWhole = false;
  }
  freeAnswer(relations, kRelationsAnswer);
  return isWhole;
}

void removeVanished(Node& bus) {
  for (Node* child = bus.firstChild; child != nullptr;) {
    Node* const next = child->nextSibling;
    setListed(*child, child->isListedNow);
    if (!child->isListedNow && !child->isWaitingToGo) surpriseRemove(*child);
    child = next;
  }
}

void receive(Node& child) {
  if (child.isIdentified || child.known.state != DeviceState::Present) return;
  if (NT_SUCCESS(identify(child)) && startsChildren()) start(child);
}

void receiveNew(Node& bus) {
  for (Node* child = bus.firstChild; child != nullptr; child = child->nextSibling) {
    if (!child->isWaitingToGo) receive(*child);
  }
}

}  // namespace

NTSTATUS enumerate(Node& bus) {
  DEVICE_RELATIONS* relations;
  NTSTATUS const status = askRelations(bus.known.physical, BusRelations, &relations);
  if (!NT_SUCCESS(status)) return status;
  forgetListing(bus);
  bool const isWhole = listAll(bus, relations);
  removeVanished(bus);
  receiveNew(bus);
  return isWhole ? status : STATUS_INSUFFICIENT_RESOURCES;
}

NTSTATUS enumerateDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("enumerateDevice");
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  if (node->known.state != DeviceState::Started) return STATUS_INVALID_DEVICE_REQUEST;
  return enumerate(*node);
}

}  // namespace ntoshost
