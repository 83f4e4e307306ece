#include "io/deviceTable.h"
#include "io/names.h"
#include "irqlCheck.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

constexpr char kAttach[] = "IoAttachDeviceToDeviceStack";
constexpr i8 kDeepestStack = 100;

void requireAttachable(DEVICE_OBJECT* source) {
  DEVOBJ_EXTENSION const& record = recordOf(source);
  if (record.attachedTo == nullptr && source->AttachedDevice == nullptr) return;
  violation("%s: the device at %p is in a stack already.", kAttach, static_cast<void*>(source));
}

bool takesAttachment(DEVICE_OBJECT* top) {
  return (top->Flags & DO_DEVICE_INITIALIZING) == 0 && !recordOf(top).isDeleted &&
         top->StackSize < kDeepestStack;
}

void attach(DEVICE_OBJECT* source, DEVICE_OBJECT* top) {
  top->AttachedDevice = source;
  recordOf(source).attachedTo = top;
  source->StackSize = static_cast<i8>(top->StackSize + 1);
  source->AlignmentRequirement = top->AlignmentRequirement;
  source->SectorSize = top->SectorSize;
}

}  // namespace
}  // namespace ntoshost

DEVICE_OBJECT* IoAttachDeviceToDeviceStack(DEVICE_OBJECT* source, DEVICE_OBJECT* target) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, ntoshost::kAttach);
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(source, ntoshost::kAttach);
  ntoshost::requireDevice(target, ntoshost::kAttach);
  ntoshost::requireAttachable(source);
  if (ntoshost::injectFault(ntoshost::kFaultAttach)) return nullptr;
  DEVICE_OBJECT* const top = ntoshost::topOf(target);
  if (top == source || !ntoshost::takesAttachment(top)) return nullptr;
  ntoshost::attach(source, top);
  return top;
}

void IoDetachDevice(DEVICE_OBJECT* target) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "IoDetachDevice");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(target, "IoDetachDevice");
  if (target->AttachedDevice == nullptr) {
    ntoshost::violation("IoDetachDevice: nothing is attached to the device at %p.",
                        static_cast<void*>(target));
  }
  ntoshost::recordOf(target->AttachedDevice).attachedTo = nullptr;
  target->AttachedDevice = nullptr;
}

DEVICE_OBJECT* IoGetAttachedDeviceReference(DEVICE_OBJECT* device) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "IoGetAttachedDeviceReference");
  ntoshost::DevicesLock const lock;
  ntoshost::requireDevice(device, "IoGetAttachedDeviceReference");
  DEVICE_OBJECT* const top = ntoshost::topOf(device);
  ntoshost::addReference(top);
  return top;
}

NTSTATUS IoCreateSymbolicLink(UNICODE_STRING* link, UNICODE_STRING* device) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "IoCreateSymbolicLink");
  if (ntoshost::injectFault(ntoshost::kFaultLink)) return STATUS_INSUFFICIENT_RESOURCES;
  ntoshost::DevicesLock const lock;
  return ntoshost::nameLink(*link, *device);
}

NTSTATUS IoDeleteSymbolicLink(UNICODE_STRING* link) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "IoDeleteSymbolicLink");
  ntoshost::DevicesLock const lock;
  return ntoshost::forgetLink(*link);
}
