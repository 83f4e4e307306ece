#include "tSentRequest.h"

#include "ntos/wait.h"

namespace {

NTSTATUS sendTo(DEVICE_OBJECT* device, IRP* request, KEVENT& done, IO_STATUS_BLOCK& result) {
  NTSTATUS const status = IoCallDriver(device, request);
  if (status == STATUS_PENDING) {
    KeWaitForSingleObject(&done, Executive, KernelMode, 0, nullptr);
    return result.Status;
  }
  return status;
}

}  // namespace

tSentRequest::tSentRequest(DEVICE_OBJECT* target, u8 major, u8 minor)
    : device(IoGetAttachedDeviceReference(target)) {
  KeInitializeEvent(&done, NotificationEvent, 0);
  request = IoBuildSynchronousFsdRequest(major, device, nullptr, 0, nullptr, &done, &result);
  request->IoStatus.Status = STATUS_NOT_SUPPORTED;
  IoGetNextIrpStackLocation(request)->MinorFunction = minor;
}

NTSTATUS tSentRequest::send() {
  NTSTATUS const status = sendTo(device, request, done, result);
  ObfDereferenceObject(device);
  return status;
}

NTSTATUS sendControl(DEVICE_OBJECT* device, u32 code, void* output, u32 outputLength,
                     u64& information) {
  KEVENT done;
  KeInitializeEvent(&done, NotificationEvent, 0);
  IO_STATUS_BLOCK result = {};
  DEVICE_OBJECT* const top = IoGetAttachedDeviceReference(device);
  IRP* const request =
      IoBuildDeviceIoControlRequest(code, top, nullptr, 0, output, outputLength, 0, &done, &result);
  NTSTATUS const status = sendTo(top, request, done, result);
  information = result.Information;
  ObfDereferenceObject(top);
  return status;
}
