#include "support/tBusStack.h"

#include "ntos/io.h"
#include "ntos/pnp.h"
#include "oxdiagk/package.h"
#include "vexk/functionDevice.h"
#include "vexkntos/tFastMutexGuard.h"

namespace {

struct tFloorExtension : tDeviceExtension {
  tBusStack* stack;
};

// Without a look at the handler, which changes at a child's end.
bool isFloor(DEVICE_OBJECT const& device) {
  return device.DeviceType == FILE_DEVICE_UNKNOWN;
}

tFloorExtension& floorOf(DEVICE_OBJECT const& device) {
  return *static_cast<tFloorExtension*>(device.DeviceExtension);
}

NTSTATUS complete(IRP& irp, NTSTATUS status) {
  irp.IoStatus.Status = status;
  IoCompleteRequest(&irp, IO_NO_INCREMENT);
  return status;
}

}  // namespace

void tChildHandler::handleDeviceControl(u32 controlCode, void* from, u32 fromLength, void* to,
                                        u32 toLength, u64* given, i32* result) {
  ++calls;
  wasClear = *given == 0 && *result == 0;
  code = controlCode;
  input = from;
  inputLength = fromLength;
  output = to;
  outputLength = toLength;
  *given = information;
  *result = status;
}

tTestChild::tTestChild(tChildHandler& handler, u64 instance, u32 slot)
    : ids{L"TEST\\Gauge7", L"TEST\\Gauge"}, description{ids,   2,    L"A gauge", instance,
                                                        false, slot, &handler} {
}

tBusStack::tBusStack() : testDriver(&dispatch) {
  ExInitializeFastMutex(&noting);
  pkgSetWDMWrapperLoadStateAndGetGUID(1);
  if (!makeFloor()) return;
  tFunctionDeviceDescription const description = {testDriver.get(), floorDevice,
                                                  FILE_DEVICE_BUS_EXTENDER,
                                                  tModuleGUID::of(kTestBusType), kTestBusNumber};
  if (vexAddFunctionDevice(description, *this) >= 0) function = testDriver.newestDevice();
}

tBusStack::~tBusStack() {
  while (function != nullptr) removeBus();
  // What is left are children that outlive the bus.
  while (testDriver.newestDevice() != floorDevice) {
    sendPnp(testDriver.newestDevice(), IRP_MN_REMOVE_DEVICE);
  }
  if (floorDevice != nullptr) IoDeleteDevice(floorDevice);
  pkgSetWDMWrapperLoadStateAndGetGUID(0);
}

bool tBusStack::makeFloor() {
  NTSTATUS const status = IoCreateDevice(testDriver.get(), sizeof(tFloorExtension), nullptr,
                                         FILE_DEVICE_UNKNOWN, 0, 0, &floorDevice);
  if (status < 0) return false;
  floorOf(*floorDevice).stack = this;
  floorDevice->Flags &= ~DO_DEVICE_INITIALIZING;
  return true;
}

NTSTATUS tBusStack::removeBus() {
  NTSTATUS const status = sendPnp(function, IRP_MN_REMOVE_DEVICE);
  if (status != STATUS_INSUFFICIENT_RESOURCES) function = nullptr;
  return status;
}

i32 tBusStack::create(tChildDescription const& description) {
  i32 status = 0;
  create(description, status);
  return status;
}

void tBusStack::create(tChildDescription const& description, i32& status) {
  if (children == nullptr) {
    status = kNotStarted;
  } else {
    children->createChild(description, status);
  }
}

void tBusStack::remove(u32 slot, i32& status) const {
  if (children == nullptr) {
    status = kNotStarted;
  } else {
    children->removeChild(slot, status);
  }
}

DEVICE_OBJECT* tBusStack::add(u64 instance, u32 slot) {
  tTestChild const child(handler, instance, slot);
  return create(child.description) == 0 ? testDriver.newestDevice() : nullptr;
}

u32 tBusStack::countRelations() {
  tDeviceRequest request(function, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
  request.send();
  auto const* const relations = request.answer<DEVICE_RELATIONS>();
  u32 const count = relations == nullptr ? 0 : relations->Count;
  request.freeRelations();
  return count;
}

void tBusStack::start(iChildBus* place, i32& /*status*/) {
  ++starts;
  children = place;
}

void tBusStack::stop(bool /*isSurprise*/) {
  ++stops;
}

void tBusStack::handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) {
}

NTSTATUS tBusStack::dispatch(DEVICE_OBJECT* device, IRP* irp) {
  if (!isFloor(*device)) return pkgWDMWrapperHandleIrp(device, irp);
  return floorOf(*device).stack->serveFloor(*irp);
}

NTSTATUS tBusStack::serveFloor(IRP& irp) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&irp);
  note(irp, location);
  if (location.MajorFunction != IRP_MJ_PNP) return complete(irp, otherStatus);
  if (location.MinorFunction == IRP_MN_QUERY_DEVICE_RELATIONS && keepsRelations) return keep(irp);
  if (location.MinorFunction != IRP_MN_QUERY_CAPABILITIES) return complete(irp, floorStatus);
  seenCapabilities = *location.Parameters.DeviceCapabilities.Capabilities;
  *location.Parameters.DeviceCapabilities.Capabilities = floorCapabilities;
  return keepsCapabilities ? keep(irp) : complete(irp, floorStatus);
}

NTSTATUS tBusStack::keep(IRP& irp) {
  IoMarkIrpPending(&irp);
  __atomic_store_n(&kept, &irp, __ATOMIC_RELEASE);
  return STATUS_PENDING;
}

// Requests may come at once.
void tBusStack::note(IRP const& irp, IO_STACK_LOCATION const& location) {
  tFastMutexGuard const guard(noting);
  ++floorRequests;
  seenMajor = location.MajorFunction;
  seenMinor = location.MinorFunction;
  seenStatus = irp.IoStatus.Status;
}

void tBusStack::completeKept() {
  IRP* irp = nullptr;
  while (irp == nullptr) irp = __atomic_exchange_n(&kept, nullptr, __ATOMIC_ACQ_REL);
  complete(*irp, floorStatus);
}
