#include "tRequestDevice.h"

#include "deviceSecurity.h"
#include "ntos/string.h"
#include "vexk/debug.h"
#include "vexk/iLib.h"
#include "vexkwindows/requestDevice.h"

constinit tRequestDevice vexRequestDevice;

namespace {

constexpr wchar_t kDriverName[] = L"\\Driver\\oxdiag";
constexpr u32 kLockTag = 0x6B786576;  // "vexk"
constexpr u32 kKinds[] = {IRP_MJ_CREATE, IRP_MJ_CLEANUP, IRP_MJ_CLOSE, IRP_MJ_DEVICE_CONTROL};

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

}  // namespace

void tRequestDevice::open() {
  NTSTATUS status = makeDriver();
  if (NT_SUCCESS(status)) status = makeDevice();
  if (NT_SUCCESS(status)) status = secure();
  if (NT_SUCCESS(status)) status = link();
  if (NT_SUCCESS(status)) return;
  ssprintf("[vexk] no programs are served, their device cannot be made: 0x%08X\n",
           static_cast<unsigned>(status));
  close();
}

NTSTATUS tRequestDevice::makeDriver() {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, kDriverName);
  NTSTATUS const status = IoCreateDriver(&name, &initialise);
  if (!NT_SUCCESS(status)) return status;
  for (u32 index = 0; index < kServedKinds; ++index) {
    former[index] = driver->MajorFunction[kKinds[index]];
  }
  return status;
}

NTSTATUS tRequestDevice::initialise(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  vexRequestDevice.driver = driver;
  IoInitializeRemoveLock(&vexRequestDevice.lock, kLockTag);
  return STATUS_SUCCESS;
}

// Nothing is served before the device is secured: the kernel still refuses every opening.
NTSTATUS tRequestDevice::makeDevice() {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, kRequestDeviceName);
  return IoCreateDevice(driver, 0, &name, FILE_DEVICE_UNKNOWN, FILE_DEVICE_SECURE_OPEN, 0, &device);
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
  if (!NT_SUCCESS(status)) return status;
  isLinked = true;
  serve(true);
  device->Flags &= ~DO_DEVICE_INITIALIZING;
  return status;
}

void tRequestDevice::serve(bool isServing) {
  DRIVER_DISPATCH* const own[] = {&completeOpening, &completeOpening, &completeOpening, &control};
  for (u32 index = 0; index < kServedKinds; ++index) {
    DRIVER_DISPATCH* const entry = isServing ? own[index] : former[index];
    __atomic_store_n(&driver->MajorFunction[kKinds[index]], entry, __ATOMIC_SEQ_CST);
  }
}

void tRequestDevice::close() {
  if (driver == nullptr) return;
  serve(false);
  if (isLinked) {
    UNICODE_STRING linkName;
    RtlInitUnicodeString(&linkName, kRequestDeviceLink);
    IoDeleteSymbolicLink(&linkName);
  }
  if (NT_SUCCESS(IoAcquireRemoveLock(&lock, this))) IoReleaseRemoveLockAndWait(&lock, this);
  if (device != nullptr) IoDeleteDevice(device);
  IoDeleteDriver(driver);
  driver = nullptr;
  device = nullptr;
  isLinked = false;
}

NTSTATUS tRequestDevice::completeOpening(DEVICE_OBJECT* /*device*/, IRP* request) {
  return complete(request, STATUS_SUCCESS, 0);
}

NTSTATUS tRequestDevice::control(DEVICE_OBJECT* /*device*/, IRP* request) {
  IO_REMOVE_LOCK* const lock = &vexRequestDevice.lock;
  if (!NT_SUCCESS(IoAcquireRemoveLock(lock, request))) {
    return complete(request, STATUS_INVALID_DEVICE_REQUEST, 0);
  }
  NTSTATUS const status = check(request, *IoGetCurrentIrpStackLocation(request));
  if (NT_SUCCESS(status)) deliver(request);
  complete(request, status, NT_SUCCESS(status) ? sizeof(tRequestOutput) : 0);
  IoReleaseRemoveLock(lock, request);
  return status;
}
