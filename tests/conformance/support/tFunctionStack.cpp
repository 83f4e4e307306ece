#include "support/tFunctionStack.h"

#include "ntos/io.h"
#include "ntos/pnp.h"
#include "vexk/dispatch.h"

namespace {

// Its null handler tells the floor from the function device.
struct tFloorExtension : tDeviceExtension {
  tFunctionStack* stack;
};

tFloorExtension& extensionOf(DEVICE_OBJECT const& device) {
  return *static_cast<tFloorExtension*>(device.DeviceExtension);
}

NTSTATUS dispatchOnPlatform(DEVICE_OBJECT* device, IRP* request) {
  switch (IoGetCurrentIrpStackLocation(request)->MajorFunction) {
    case IRP_MJ_POWER:
      return vexDispatchPower(device, request);
    case IRP_MJ_SYSTEM_CONTROL:
      return vexDispatchSystemControl(device, request);
    case IRP_MJ_PNP:
      return vexDispatchPnp(device, request);
    default:
      return vexDispatch(device, request);
  }
}

}  // namespace

void tRecordingComponent::note(char call) {
  if (count + 1 < sizeof(calls)) calls[count++] = call;
}

void tRecordingComponent::start(iChildBus* children, i32& status) {
  note('S');
  place = children;
  cameWith = status;
  if (startStatus != 0) status = startStatus;
}

void tRecordingComponent::stop(bool isSurprise) {
  note(isSurprise ? 'x' : 's');
}

void tRecordingComponent::handleDeviceControl(u32 controlCode, void* from, u32 fromLength, void* to,
                                              u32 toLength, u64* information, i32* status) {
  note('c');
  code = controlCode;
  input = from;
  inputLength = fromLength;
  output = to;
  outputLength = toLength;
  wasClear = *information == 0 && *status == 0;
  *information = controlInformation;
  *status = controlStatus;
}

tFunctionStack::tFunctionStack(u32 floorFlags) : testDriver(&dispatch) {
  NTSTATUS const status = IoCreateDevice(testDriver.get(), sizeof(tFloorExtension), nullptr,
                                         FILE_DEVICE_UNKNOWN, 0, 0, &floor);
  if (status < 0) return;
  extensionOf(*floor).stack = this;
  floor->Flags |= floorFlags;
  floor->Flags &= ~DO_DEVICE_INITIALIZING;
  tFunctionDeviceDescription const description = {testDriver.get(), floor, FILE_DEVICE_BUS_EXTENDER,
                                                  tModuleGUID::of(kStackBusType), kStackBusNumber};
  if (vexAddFunctionDevice(description, component) >= 0) device = testDriver.newestDevice();
}

tFunctionStack::~tFunctionStack() {
  while (device != nullptr && hasDevice()) sendPnp(IRP_MN_REMOVE_DEVICE);
  if (floor != nullptr) IoDeleteDevice(floor);
}

NTSTATUS tFunctionStack::send(u8 major, u8 minor) const {
  tDeviceRequest request(device, major, minor);
  request.send();
  return request.status();
}

NTSTATUS tFunctionStack::dispatch(DEVICE_OBJECT* target, IRP* request) {
  tFloorExtension const& extension = extensionOf(*target);
  if (extension.handler != nullptr) return dispatchOnPlatform(target, request);
  return extension.stack->serveFloor(*request);
}

NTSTATUS tFunctionStack::serveFloor(IRP& request) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&request);
  component.note('F');
  seenMajor = location.MajorFunction;
  seenMinor = location.MinorFunction;
  seenStatus = request.IoStatus.Status;
  if (auto* const hook = atFloor) {
    atFloor = nullptr;
    hook(*this);
  }
  if (!keeps) return complete(request);
  IoMarkIrpPending(&request);
  __atomic_store_n(&kept, &request, __ATOMIC_RELEASE);
  return STATUS_PENDING;
}

NTSTATUS tFunctionStack::complete(IRP& request) const {
  request.IoStatus.Status = floorStatus;
  IoCompleteRequest(&request, IO_NO_INCREMENT);
  return floorStatus;
}

void tFunctionStack::completeKept() {
  complete(*__atomic_exchange_n(&kept, nullptr, __ATOMIC_ACQUIRE));
}
