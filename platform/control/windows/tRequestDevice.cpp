#include "tRequestDevice.h"

#include "deviceSecurity.h"
#include "ntos/string.h"
#include "vexk/iLib.h"
#include "vexkwindows/requestDevice.h"

namespace {

NTSTATUS complete(IRP* request, NTSTATUS status, u64 information) {
  request->IoStatus.Status = status;
  request->IoStatus.Information = information;
  IoCompleteRequest(request, IO_NO_INCREMENT);
  return status;
}

NTSTATUS check(IRP* request, IO_STACK_LOCATION const& at) {
  auto const& parameters = at.Parameters.DeviceIoControl;
  if (parameters.IoControlCode != kRequestDeliver) return STATUS_INVALID_DEVICE_REQUEST;
  if (IoIs32bitProcess(request) != 0) return STATUS_NOT_SUPPORTED;
  bool const isWhole = parameters.InputBufferLength == sizeof(tRequestInput) &&
                       parameters.OutputBufferLength == sizeof(tRequestOutput);
  if (!isWhole) return STATUS_INFO_LENGTH_MISMATCH;
  auto const& input = *static_cast<tRequestInput const*>(request->AssociatedIrp.SystemBuffer);
  bool const isNamed = input.nameLength != 0 && input.nameLength <= kRequestNameSize;
  return isNamed ? STATUS_SUCCESS : STATUS_INVALID_PARAMETER;
}

// Input and output share the buffer, which is the kernel's and out of the program's reach.
void deliver(IRP* request) {
  void* const buffer = request->AssociatedIrp.SystemBuffer;
  auto const& input = *static_cast<tRequestInput const*>(buffer);
  tRequestOutput output = {0};
  iLib::deliver(input.name, input.nameLength, input.request, output.status);
  *static_cast<tRequestOutput*>(buffer) = output;
}

NTSTATUS control(IRP* request, IO_STACK_LOCATION const& at) {
  NTSTATUS const status = check(request, at);
  if (NT_SUCCESS(status)) deliver(request);
  return complete(request, status, NT_SUCCESS(status) ? sizeof(tRequestOutput) : 0);
}

}  // namespace

NTSTATUS tRequestDevice::open(DRIVER_OBJECT& driver) {
  NTSTATUS status = makeDevice(driver);
  if (NT_SUCCESS(status)) status = secure();
  if (NT_SUCCESS(status)) status = link();
  if (!NT_SUCCESS(status)) close();
  return status;
}

// The kernel refuses every opening as long as the device is being initialised, which it ends itself
// when DriverEntry has returned: nobody opens a device that is not secured.
NTSTATUS tRequestDevice::makeDevice(DRIVER_OBJECT& driver) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, kRequestDeviceName);
  return IoCreateDevice(&driver, 0, &name, FILE_DEVICE_UNKNOWN, FILE_DEVICE_SECURE_OPEN, 0,
                        &device);
}

NTSTATUS tRequestDevice::secure() {
  HANDLE handle;
  NTSTATUS status = ObOpenObjectByPointer(device, OBJ_KERNEL_HANDLE, nullptr, WRITE_DAC, nullptr,
                                          KernelMode, &handle);
  if (!NT_SUCCESS(status)) return status;
  status = ZwSetSecurityObject(handle, DACL_SECURITY_INFORMATION, &kForAdministrators);
  ZwClose(handle);
  return status;
}

NTSTATUS tRequestDevice::link() {
  UNICODE_STRING name;
  UNICODE_STRING linkName;
  RtlInitUnicodeString(&name, kRequestDeviceName);
  RtlInitUnicodeString(&linkName, kRequestDeviceLink);
  NTSTATUS const status = IoCreateSymbolicLink(&linkName, &name);
  isLinked = NT_SUCCESS(status);
  return status;
}

void tRequestDevice::close() {
  if (isLinked) {
    UNICODE_STRING linkName;
    RtlInitUnicodeString(&linkName, kRequestDeviceLink);
    IoDeleteSymbolicLink(&linkName);
  }
  if (device != nullptr) IoDeleteDevice(device);
  device = nullptr;
  isLinked = false;
}

NTSTATUS tRequestDevice::dispatch(DEVICE_OBJECT* /*device*/, IRP* request) {
  IO_STACK_LOCATION const& at = *IoGetCurrentIrpStackLocation(request);
  bool const isControl = at.MajorFunction == IRP_MJ_DEVICE_CONTROL;
  return isControl ? control(request, at) : complete(request, STATUS_SUCCESS, 0);
}
