#include "common/tFunctionDevice.h"

#include "ntos/io.h"
#include "ntos/pool.h"
#include "ntos/wait.h"
#include "vexk/placementNew.h"
#include "vexk/statusCodes.h"
#include "vexkntos/droppedRelations.h"
#include "vexkntos/handlerOf.h"
#include "vexkntos/tReturnWatch.h"

namespace {

constexpr u32 kLockTag = ntosPoolTag("vexf");
constexpr char kControl[] = "a device of a driver";
constexpr u32 kMethodBits = 3;  // of a control code
constexpr u32 kInheritedFlags = DO_BUFFERED_IO | DO_POWER_PAGABLE;

struct tFunctionExtension : tDeviceExtension {
  alignas(tFunctionDevice) u8 place[sizeof(tFunctionDevice)];
};
static_assert(sizeof(tFunctionExtension) <= tFunctionDevice::kExtensionSize);

NTSTATUS complete(IRP& request, NTSTATUS status) {
  request.IoStatus.Status = status;
  IoCompleteRequest(&request, IO_NO_INCREMENT);
  return status;
}

// The two buffers of a device control, as its code says that they come.
struct tControlBuffers {
  void* input;
  void* output;
};

bool findBuffers(IRP& request, tControlBuffers& buffers) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&request);
  auto const& parameters = location.Parameters.DeviceIoControl;
  switch (parameters.IoControlCode & kMethodBits) {
    case METHOD_BUFFERED:
      buffers = {request.AssociatedIrp.SystemBuffer, request.AssociatedIrp.SystemBuffer};
      return true;
    case METHOD_NEITHER:
      buffers = {parameters.Type3InputBuffer, request.UserBuffer};
      return true;
    default:
      return false;
  }
}

// The request stays with whoever waits for it.
NTSTATUS signalReturn(DEVICE_OBJECT* /*device*/, IRP* /*request*/, void* context) {
  KeSetEvent(static_cast<KEVENT*>(context), IO_NO_INCREMENT, 0);
  return STATUS_MORE_PROCESSING_REQUIRED;
}

GUID kernelGUID(tModuleGUID const& guid) {
  GUID same;
  static_assert(sizeof(same) == sizeof(guid));
  __builtin_memcpy(&same, &guid, sizeof(same));
  return same;
}

NTSTATUS kernelStatusOf(i32 status) {
  if (status >= 0) return STATUS_SUCCESS;
  return status == kStatusOutOfMemory ? STATUS_INSUFFICIENT_RESOURCES : STATUS_UNSUCCESSFUL;
}

}  // namespace

tFunctionDevice& tFunctionDevice::construct(DEVICE_OBJECT& device,
                                            tFunctionDeviceDescription const& description,
                                            iDeviceComponent& component) {
  auto* const extension = static_cast<tFunctionExtension*>(device.DeviceExtension);
  auto* const made = new (extension->place) tFunctionDevice(device, description, component);
  extension->handler = made;
  return *made;
}

tFunctionDevice& tFunctionDevice::of(DEVICE_OBJECT const& device) {
  return static_cast<tFunctionDevice&>(vexHandlerOf(device));
}

tFunctionDevice::tFunctionDevice(DEVICE_OBJECT& device,
                                 tFunctionDeviceDescription const& description,
                                 iDeviceComponent& owner)
    : object(device),
      physical(*description.physicalDevice),
      component(owner),
      busType(kernelGUID(description.busType)),
      busNumber(description.legacyBusNumber) {
  IoInitializeRemoveLock(&removeLock, kLockTag);
}

bool tFunctionDevice::attach() {
  lower = IoAttachDeviceToDeviceStack(&object, &physical);
  if (lower == nullptr) return false;
  object.Flags |= lower->Flags & kInheritedFlags;
  object.Flags &= ~DO_DEVICE_INITIALIZING;
  return true;
}

NTSTATUS tFunctionDevice::enter(IRP& request) {
  return IoAcquireRemoveLock(&removeLock, &request);
}

// The request may have been completed meanwhile: only its address counts.
void tFunctionDevice::leave(IRP& request) {
  IoReleaseRemoveLock(&removeLock, &request);
}

NTSTATUS tFunctionDevice::dispatch(IRP& request) {
  switch (IoGetCurrentIrpStackLocation(&request)->MajorFunction) {
    case IRP_MJ_CREATE:
      return open(request);
    case IRP_MJ_CLEANUP:
    case IRP_MJ_CLOSE:
      return complete(request, STATUS_SUCCESS);
    case IRP_MJ_DEVICE_CONTROL:
    case IRP_MJ_INTERNAL_DEVICE_CONTROL:
      return control(request);
    default:
      return passOn(request);
  }
}

NTSTATUS tFunctionDevice::open(IRP& request) {
  return complete(request, getLife() == kGone ? STATUS_DELETE_PENDING : STATUS_SUCCESS);
}

NTSTATUS tFunctionDevice::control(IRP& request) {
  request.IoStatus.Information = 0;
  NTSTATUS status = enter(request);
  if (!NT_SUCCESS(status)) return complete(request, status);
  status = serveControl(request);
  // Completed before the lock is left: the removal must not overtake a request that it waits for.
  complete(request, status);
  leave(request);
  return status;
}

NTSTATUS tFunctionDevice::serveControl(IRP& request) {
  tLife const now = getLife();
  if (now == kGone) return STATUS_DELETE_PENDING;
  if (now != kStarted) return STATUS_DEVICE_NOT_READY;
  tControlBuffers buffers;
  if (!findBuffers(request, buffers)) return STATUS_INVALID_DEVICE_REQUEST;
  auto const& parameters = IoGetCurrentIrpStackLocation(&request)->Parameters.DeviceIoControl;
  u64 information = 0;
  i32 status = 0;
  tReturnWatch const watch(kControl, sizeof(kControl) - 1);
  handleDeviceControl(parameters.IoControlCode, buffers.input, parameters.InputBufferLength,
                      buffers.output, parameters.OutputBufferLength, &information, &status);
  // The system copies so many bytes to the caller.
  u64 const most = parameters.OutputBufferLength;
  request.IoStatus.Information = information < most ? information : most;
  return status < 0 ? STATUS_UNSUCCESSFUL : STATUS_SUCCESS;
}

void tFunctionDevice::handleDeviceControl(u32 code, void* input, u32 inputLength, void* output,
                                          u32 outputLength, u64* information, i32* status) {
  component.handleDeviceControl(code, input, inputLength, output, outputLength, information,
                                status);
}

NTSTATUS tFunctionDevice::passOn(IRP& request) {
  NTSTATUS const entered = enter(request);
  if (!NT_SUCCESS(entered)) return complete(request, entered);
  IoSkipCurrentIrpStackLocation(&request);
  NTSTATUS const status = IoCallDriver(lower, &request);
  leave(request);
  return status;
}

NTSTATUS tFunctionDevice::passAndWait(IRP& request) {
  KEVENT returned;
  KeInitializeEvent(&returned, NotificationEvent, 0);
  IoCopyCurrentIrpStackLocationToNext(&request);
  IoSetCompletionRoutine(&request, &signalReturn, &returned, true, true, true);
  if (IoCallDriver(lower, &request) == STATUS_PENDING) {
    KeWaitForSingleObject(&returned, Executive, KernelMode, 0, nullptr);
  }
  return request.IoStatus.Status;
}

NTSTATUS tFunctionDevice::dispatchPower(IRP& request) {
  PoStartNextPowerIrp(&request);
  NTSTATUS const entered = enter(request);
  if (!NT_SUCCESS(entered)) return complete(request, entered);
  IoSkipCurrentIrpStackLocation(&request);
  NTSTATUS const status = PoCallDriver(lower, &request);
  leave(request);
  return status;
}

NTSTATUS tFunctionDevice::dispatchSystemControl(IRP& request) {
  return passOn(request);
}

NTSTATUS tFunctionDevice::dispatchPnp(IRP& request) {
  switch (IoGetCurrentIrpStackLocation(&request)->MinorFunction) {
    case IRP_MN_START_DEVICE:
      return startDevice(request);
    case IRP_MN_STOP_DEVICE:
      return stopDevice(request);
    case IRP_MN_REMOVE_DEVICE:
      return remove(request);
    case IRP_MN_SURPRISE_REMOVAL:
      return surprise(request);
    case IRP_MN_QUERY_REMOVE_DEVICE:
    case IRP_MN_CANCEL_REMOVE_DEVICE:
    case IRP_MN_QUERY_STOP_DEVICE:
    case IRP_MN_CANCEL_STOP_DEVICE:
      return agree(request);
    case IRP_MN_QUERY_DEVICE_RELATIONS:
      return queryRelations(request);
    default:
      return passOn(request);
  }
}

// A request that a driver agrees with goes down as a success; the devices below may still refuse.
NTSTATUS tFunctionDevice::agree(IRP& request) {
  request.IoStatus.Status = STATUS_SUCCESS;
  return passOn(request);
}

NTSTATUS tFunctionDevice::queryRelations(IRP& request) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(&request);
  if (location.Parameters.QueryDeviceRelations.Type != BusRelations) return passOn(request);
  NTSTATUS status = enter(request);
  if (NT_SUCCESS(status)) {
    status = passBusRelations(request);
    complete(request, status);
    leave(request);
    return status;
  }
  vexDropRelations(request);
  return complete(request, status);
}

// Of a request that has failed nobody looks at the list that went down with it.
NTSTATUS tFunctionDevice::passBusRelations(IRP& request) {
  u64 const list = request.IoStatus.Information;
  NTSTATUS const status = passAndWait(request);
  if (!NT_SUCCESS(status) && request.IoStatus.Information == list) vexDropRelations(request);
  return status;
}

NTSTATUS tFunctionDevice::startDevice(IRP& request) {
  NTSTATUS status = enter(request);
  if (!NT_SUCCESS(status)) return complete(request, status);
  status = startWithin(request);
  complete(request, status);
  leave(request);
  return status;
}

NTSTATUS tFunctionDevice::startWithin(IRP& request) {
  NTSTATUS const below = passAndWait(request);
  if (!NT_SUCCESS(below)) return below;
  i32 status = 0;
  start(status);
  return kernelStatusOf(status);
}

void tFunctionDevice::start(i32& status) {
  if (status < 0) return;
  component.start(children, status);
  if (status >= 0) setLife(kStarted);
}

NTSTATUS tFunctionDevice::stopDevice(IRP& request) {
  if (getLife() == kStarted) setLife(kPaused);
  return agree(request);
}

void tFunctionDevice::stop(bool isSurprise) {
  if (getLife() == kGone) return;
  setLife(kGone);
  component.stop(isSurprise);
}

NTSTATUS tFunctionDevice::surprise(IRP& request) {
  NTSTATUS const entered = enter(request);
  if (!NT_SUCCESS(entered)) return complete(request, entered);
  stop(true);
  NTSTATUS const status = agree(request);
  leave(request);
  return status;
}

NTSTATUS tFunctionDevice::remove(IRP& request) {
  NTSTATUS const entered = enter(request);
  if (!NT_SUCCESS(entered)) return complete(request, entered);
  stop(false);
  IoReleaseRemoveLockAndWait(&removeLock, &request);
  request.IoStatus.Status = STATUS_SUCCESS;
  IoSkipCurrentIrpStackLocation(&request);
  NTSTATUS const status = IoCallDriver(lower, &request);
  IoDetachDevice(lower);
  component.release();
  // The object goes with its device, now or when the last handle is closed.
  IoDeleteDevice(&object);
  return status;
}
