#include "io/control.h"

#include <string.h>

#include "io/requestTable.h"
#include "irqlCheck.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

void fillLocation(IO_STACK_LOCATION& location, ControlCall const& control) {
  location.MajorFunction =
      control.isInternal ? IRP_MJ_INTERNAL_DEVICE_CONTROL : IRP_MJ_DEVICE_CONTROL;
  location.Parameters.DeviceIoControl.OutputBufferLength = control.outputLength;
  location.Parameters.DeviceIoControl.InputBufferLength = control.inputLength;
  location.Parameters.DeviceIoControl.IoControlCode = control.code;
}

bool fillBuffered(IRP* request, ControlCall const& control) {
  u32 const size =
      control.inputLength > control.outputLength ? control.inputLength : control.outputLength;
  request->UserBuffer = control.output;
  if (size == 0) return true;
  if (!giveBuffer(request, size)) return false;
  if (control.inputLength != 0) {
    memcpy(request->AssociatedIrp.SystemBuffer, control.input, control.inputLength);
  }
  RequestsLock const lock;
  RequestRecord& record = requireRequest(request, "fillControl");
  record.output = control.output;
  record.outputLength = control.outputLength;
  return true;
}

}  // namespace

bool fillControl(IRP* request, ControlCall const& control) {
  IO_STACK_LOCATION& location = *IoGetNextIrpStackLocation(request);
  fillLocation(location, control);
  if (methodOf(control.code) == METHOD_BUFFERED) return fillBuffered(request, control);
  if (methodOf(control.code) != METHOD_NEITHER) {
    violation("The device control 0x%08x has a direct method; this is not done.", control.code);
  }
  location.Parameters.DeviceIoControl.Type3InputBuffer = control.input;
  request->UserBuffer = control.output;
  return true;
}

}  // namespace ntoshost

IRP* IoBuildDeviceIoControlRequest(u32 controlCode, DEVICE_OBJECT* device, void* input,
                                   u32 inputLength, void* output, u32 outputLength,
                                   BOOLEAN isInternal, KEVENT* event, IO_STATUS_BLOCK* result) {
  constexpr char kBuild[] = "IoBuildDeviceIoControlRequest";
  IRP* const request = ntoshost::makeSynchronous(device, event, result, kBuild);
  if (request == nullptr) return nullptr;
  ntoshost::ControlCall const control = {controlCode, input,        inputLength,
                                         output,      outputLength, isInternal != 0};
  if (ntoshost::fillControl(request, control)) return request;
  IoFreeIrp(request);
  return nullptr;
}
