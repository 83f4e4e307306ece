#include "package/windows/wdm/tParentDevice.h"

#include "package/windows/wdm/deviceRelations.h"
#include "package/windows/wdm/requestEnds.h"
#include "package/windows/wdm/tParentList.h"
#include "package/windows/wdm/wrapperMemory.h"
#include "vexk/placementNew.h"
#include "vexk/statusCodes.h"
#include "vexkntos/handlerOf.h"
#include "vexkntos/tFastMutexGuard.h"

namespace nOXDIAG100 {
namespace {

constexpr i64 kAskAgainTime = 100'000'000;  // 10 s, in units of 100 ns

tBusIdentity identityOf(DEVICE_OBJECT const& device) {
  iDeviceHandler& handler = vexHandlerOf(device);
  tBusIdentity identity = {};
  handler.getBusTypeGUID(identity.type);
  identity.number = handler.getLegacyBusNumber();
  return identity;
}

// A request for relations that fails is not repeated by the system. The bus may be gone meanwhile,
// and another have its address: that is asked once more then.
void awaitLettingGo(tChildDevice& child, DEVICE_OBJECT const& bus) {
  while (!child.awaitHandlerEnd(kAskAgainTime)) {
    tParentDevice* const parent = wdmParents.enter(bus);
    if (parent == nullptr) continue;
    parent->askForRelations();
    parent->leave();
  }
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
  tChildDeparture departure = {};
  DEVICE_OBJECT const& bus = device;
  tChildDevice* const child = takeAway(slot, departure);
  if (child == nullptr) {
    status = kStatusBadArgument;
    return;
  }
  if (departure == tChildDeparture::Awaited) awaitLettingGo(*child, bus);
  if (departure == tChildDeparture::EndHandler) child->finish(tChildAftermath::EndHandler);
  if (departure == tChildDeparture::EndDevice) child->finish(tChildAftermath::EndDevice);
  ObfDereferenceObject(child->device);
}

NTSTATUS tParentDevice::addRelations(IRP& request, tChildReport& report) {
  auto* const before = reinterpret_cast<DEVICE_RELATIONS*>(request.IoStatus.Information);
  tFastMutexGuard const guard(mutex);
  if (!report.reserve(countUnknown())) return STATUS_INSUFFICIENT_RESOURCES;
  size_t const kept = before == nullptr ? 0 : before->Count;
  DEVICE_RELATIONS* const relations = makeRelations(kept + childCount);
  if (relations == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  moveRelations(*relations, before);
  listPresent(*relations, report);
  unlinkAbsent();
  return answerWith(request, relations);
}

void tParentDevice::askForRelations() {
  IoInvalidateDeviceRelations(vexHandlerOf(device).getPhysicalDevice(), BusRelations);
}

void tParentDevice::settle(tChildReport& report, bool isSuccess) {
  while (tChildDevice* const child = report.take()) {
    child->finish(settle(*child, isSuccess));
    ObfDereferenceObject(child->device);
  }
}

void tParentDevice::dismissChildren(tBusEnd end) {
  tLinkedList<tChildDevice> doomed;
  doomed.initialise();
  unlinkAll(end, doomed);
  while (tChildDevice* const child = doomed.first()) {
    doomed.remove(*child);
    child->finish(tChildAftermath::EndDevice);
  }
}

i32 tParentDevice::addChild(tChildDescription const& description) {
  if (description.handler == nullptr) return kStatusBadArgument;
  if (hasInstance(description.instance)) return kStatusChildExists;
  i32 status = 0;
  tChildDevice* const child =
      tChildDevice::create(device.DriverObject, identity, description, status);
  if (child == nullptr) return status;
  status = link(*child);
  if (status < 0) child->discard();
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

// Gives the child with a reference, null when there is none in the slot.
tChildDevice* tParentDevice::takeAway(u32 slot, tChildDeparture& departure) {
  if (!enter()) return nullptr;
  tChildDevice* const child = markAbsent(slot, departure);
  if (child != nullptr && departure == tChildDeparture::Awaited) {
    askForRelations();
  }
  leave();
  return child;
}

tChildDevice* tParentDevice::markAbsent(u32 slot, tChildDeparture& departure) {
  tFastMutexGuard const guard(mutex);
  tChildDevice* const child = findSlot(slot);
  if (child == nullptr) return nullptr;
  ObfReferenceObject(child->device);
  departure = child->depart();
  if (departure == tChildDeparture::EndDevice) forget(*child);
  return child;
}

// A child that ends here may be in the list still, as an absent one.
tChildAftermath tParentDevice::settle(tChildDevice& child, bool isSuccess) {
  tFastMutexGuard const guard(mutex);
  bool const isListed = child.parent != nullptr;
  tChildAftermath const aftermath = child.endReport(isSuccess);
  if (isListed && child.parent == nullptr) forget(child);
  return aftermath;
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

u32 tParentDevice::countUnknown() {
  u32 count = 0;
  for (tChildDevice* child = children.first(); child != nullptr; child = children.next(*child)) {
    if (child->isPresent && !child->isReported) ++count;
  }
  return count;
}

void tParentDevice::listPresent(DEVICE_RELATIONS& relations, tChildReport& report) {
  for (tChildDevice* child = children.first(); child != nullptr; child = children.next(*child)) {
    if (!child->isPresent) continue;
    if (!child->isReported) report.add(*child);
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

void tParentDevice::unlinkAll(tBusEnd end, tLinkedList<tChildDevice>& doomed) {
  tFastMutexGuard const guard(mutex);
  isRemoving = true;
  while (tChildDevice* const child = children.first()) {
    forget(*child);
    if (child->dismiss(end) == tChildAftermath::EndDevice) doomed.append(*child);
  }
}

void tParentDevice::forget(tChildDevice& child) {
  children.remove(child);
  --childCount;
}

}  // namespace nOXDIAG100
