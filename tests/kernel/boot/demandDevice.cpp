#include "demandDevice.h"

#include "ntos/debug.h"
#include "ntos/file.h"
#include "ntos/status.h"
#include "ntos/string.h"
#include "vexkwindows/requestDevice.h"

namespace {

NTSTATUS openAndClose() {
  UNICODE_STRING name;
  OBJECT_ATTRIBUTES attributes;
  IO_STATUS_BLOCK result;
  HANDLE device = nullptr;
  RtlInitUnicodeString(&name, kRequestDeviceLink);
  InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, nullptr,
                             nullptr);
  NTSTATUS const status =
      ZwCreateFile(&device, GENERIC_READ | GENERIC_WRITE | SYNCHRONIZE, &attributes, &result,
                   nullptr, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_OPEN,
                   FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
  if (NT_SUCCESS(status)) ZwClose(device);
  return status;
}

}  // namespace

NTSTATUS demandDevice(NTSTATUS wanted) {
  NTSTATUS const status = openAndClose();
  if (status == wanted) return STATUS_SUCCESS;
  DbgPrint("[boot] opening the request device: 0x%08X\n", status);
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}
