#include "package/windows/tParentDevice.h"

#include "ntos/wait.h"
#include "package/windows/deviceRelations.h"
#include "package/windows/requestEnds.h"
#include "package/windows/wrapperMemory.h"
#include "vexk/placementNew.h"
#include "vexk/statusCodes.h"
#include "vexk/tFastMutexGuard.h"

namespace nOXDIAG100 {
namespace {

tBusIdentity identityOf(DEVICE_OBJECT const& device) {
  iDeviceHandler& handler = vexHandlerOf(device);
  tBusIdentity identity = {};
  handler.getBusTypeGUID(identity.type);
  identity.number = handler.getLegacyBusNumber();
  return identity;
}

}  // namespace

tParentDevice* tParentDevice::create(DEVICE_OBJECT& device) {
  void* const block = ExAllocatePoolWithTag(NonPagedPoolNx, sizeof(tParentDevice), kWrapperTag);
  return block == nullptr ? nullptr : new (block) tParentDevice(device);
}

tParentDevice::tParentDevice(DEVICE_OBJECT& bus) : device(bus), identity(identityOf(bus)) {
  IoInitializeRemoveLock(&callers, kWrapperTag);
  ExInitializeFastMutex(&mutex);
  children.initialise();
}

void tParentDevice::close() {
  if (enter()) IoReleaseRemoveLockAndWait(&callers, nullptr);
}

void tParentDevice::destroy() {
  ExFreePoolWithTag(this, kWrapperTag);
}

void tParentDevice::createChild(tChildDescription const& description, i32& status) {
  if (status < 0) return;
  i32 result = kStatusBusRemoved;
  if (enter()) {
    result = addChild(description);
    leave();
  }
  if (result < 0) status = result;
}

// Nothing of the bus is used once takeAway has returned: it may be gone.
void tParentDevice::removeChild(u32 slot, i32& status) {
  if (status < 0) return;
  KEVENT gone;
  KeInitializeEvent(&gone, NotificationEvent, 0);
  tChildDevice* child = nullptr;
  switch (takeAway(slot, gone, child)) {
    case tChildDeparture::Awaited:
      KeWaitForSingleObject(&gone, Executive, KernelMode, 0, nullptr);
      return;
    case tChildDeparture::Drained:
      child->drain();
      ObfDereferenceObject(child->device);
      return;
    case tChildDeparture::Forgotten:
      return child->finish(tChildAftermath::Destroy);
    default:
      status = kStatusBadArgument;
  }
}

NTSTATUS tParentDevice::addRelations(IRP& request) {
  auto* const before = reinterpret_cast<DEVICE_RELATIONS*>(request.IoStatus.Information);
  tFastMutexGuard const guard(mutex);
  size_t const kept = before == nullptr ? 0 : before->Count;
  DEVICE_RELATIONS* const relations = makeRelations(kept + childCount);
  if (relations == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  moveRelations(*relations, before);
  listPresent(*relations);
  unlinkAbsent();
  return answerWith(request, relations);
}

void tParentDevice::dismissChildren() {
  tLinkedList<tChildDevice> doomed;
  doomed.initialise();
  unlinkAll(doomed);
  while (tChildDevice* const child = doomed.first()) {
    doomed.remove(*child);
    child->finish(tChildAftermath::Destroy);
  }
}

i32 tParentDevice::addChild(tChildDescription const& description) {
  if (hasInstance(description.instance)) return kStatusChildExists;
  i32 status = 0;
  tChildDevice* const child =
      tChildDevice::create(device.DriverObject, identity, description, status);
  if (child == nullptr) return status;
  status = link(*child);
  if (status < 0) child->finish(tChildAftermath::Destroy);
  return status;
}

bool tParentDevice::hasInstance(u64 instance) {
  tFastMutexGuard const guard(mutex);
  return findInstance(instance) != nullptr;
}

// Both refusals are looked for again: the child was made without the mutex.
i32 tParentDevice::link(tChildDevice& child) {
  tFastMutexGuard const guard(mutex);
  if (isRemoving) return kStatusBusRemoved;
  if (findInstance(child.instance) != nullptr) return kStatusChildExists;
  child.link(*this);
  children.append(child);
  ++childCount;
  return 0;
}

tChildDeparture tParentDevice::takeAway(u32 slot, KEVENT& gone, tChildDevice*& child) {
  if (!enter()) return tChildDeparture::Unknown;
  tChildDeparture const departure = markAbsent(slot, gone, child);
  if (departure == tChildDeparture::Awaited) {
    IoInvalidateDeviceRelations(vexHandlerOf(device).getPhysicalDevice(), BusRelations);
  }
  leave();
  return departure;
}

tChildDeparture tParentDevice::markAbsent(u32 slot, KEVENT& gone, tChildDevice*& child) {
  tFastMutexGuard const guard(mutex);
  child = findSlot(slot);
  if (child == nullptr) return tChildDeparture::Unknown;
  tChildDeparture const departure = child->depart(gone);
  if (departure == tChildDeparture::Forgotten) forget(*child);
  return departure;
}

tChildDevice* tParentDevice::findInstance(u64 instance) {
  tChildDevice* child = children.first();
  while (child != nullptr && !(child->isPresent && child->instance == instance)) {
    child = children.next(*child);
  }
  return child;
}

tChildDevice* tParentDevice::findSlot(u32 slot) {
  tChildDevice* child = children.first();
  while (child != nullptr && !(child->isPresent && child->slot == slot)) {
    child = children.next(*child);
  }
  return child;
}

void tParentDevice::listPresent(DEVICE_RELATIONS& relations) {
  for (tChildDevice* child = children.first(); child != nullptr; child = children.next(*child)) {
    if (!child->isPresent) continue;
    child->isReported = true;
    appendRelation(relations, *child->device);
  }
}

void tParentDevice::unlinkAbsent() {
  tChildDevice* child = children.first();
  while (child != nullptr) {
    tChildDevice* const next = children.next(*child);
    if (!child->isPresent) {
      forget(*child);
      child->unlink();
    }
    child = next;
  }
}

void tParentDevice::unlinkAll(tLinkedList<tChildDevice>& doomed) {
  tFastMutexGuard const guard(mutex);
  isRemoving = true;
  while (tChildDevice* const child = children.first()) {
    forget(*child);
    if (child->dismiss() == tChildAftermath::Destroy) doomed.append(*child);
  }
}

void tParentDevice::forget(tChildDevice& child) {
  children.remove(child);
  --childCount;
}

}  // namespace nOXDIAG100
