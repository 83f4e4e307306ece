#include "support/tDeviceRequest.h"

#include "ntos/pnp.h"
#include "ntos/pool.h"
#include "oxdiagk/package.h"

namespace {

constexpr u32 kAnswerTag = ntosPoolTag("vex ");

}  // namespace

tDeviceRequest::tDeviceRequest(DEVICE_OBJECT* target, u8 major, u8 minor)
    : irp(target == nullptr ? nullptr : IoAllocateIrp(target->StackSize, 0)), device(target) {
  if (irp == nullptr) useSpare();
  irp->IoStatus.Status = STATUS_NOT_SUPPORTED;
  location().MajorFunction = major;
  location().MinorFunction = minor;
}

tDeviceRequest::~tDeviceRequest() {
  if (irp != &spare.irp) IoFreeIrp(irp);
}

void tDeviceRequest::useSpare() {
  irp = &spare.irp;
  irp->CurrentLocation = irp->StackCount = 1;
  irp->Tail.Overlay.CurrentStackLocation = spare.locations + 1;
}

NTSTATUS tDeviceRequest::giveUp() {
  irp->IoStatus.Status = STATUS_INSUFFICIENT_RESOURCES;
  return STATUS_INSUFFICIENT_RESOURCES;
}

NTSTATUS tDeviceRequest::send() {
  if (irp == &spare.irp) return giveUp();
  IoSetCompletionRoutine(irp, &keep, this, true, true, true);
  return IoCallDriver(device, irp);
}

NTSTATUS tDeviceRequest::sendPastTheKernel(NTSTATUS status) {
  if (irp == &spare.irp) return giveUp();
  IoSetCompletionRoutine(irp, &keep, this, true, true, true);
  irp->IoStatus.Status = status;
  location().DeviceObject = device;
  --irp->CurrentLocation;
  --irp->Tail.Overlay.CurrentStackLocation;
  NTSTATUS const result = pkgWDMWrapperHandleIrp(device, irp);
  if (completionCount == 0) IoSkipCurrentIrpStackLocation(irp);
  return result;
}

void tDeviceRequest::freeAnswer() {
  if (irp->IoStatus.Information == 0) return;
  ExFreePoolWithTag(answer<void>(), kAnswerTag);
  irp->IoStatus.Information = 0;
}

void tDeviceRequest::freeRelations() {
  auto* const relations = answer<DEVICE_RELATIONS>();
  if (relations == nullptr) return;
  for (u32 index = 0; index < relations->Count; ++index) {
    ObfDereferenceObject(relations->Objects[index]);
  }
  freeAnswer();
}

NTSTATUS tDeviceRequest::keep(DEVICE_OBJECT* /*device*/, IRP* /*irp*/, void* context) {
  ++static_cast<tDeviceRequest*>(context)->completionCount;
  return STATUS_MORE_PROCESSING_REQUIRED;
}

NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor) {
  tDeviceRequest request(device, IRP_MJ_PNP, minor);
  request.send();
  return request.status();
}
