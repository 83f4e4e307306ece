#include "wine/tEnumerator.h"

#include "ntos/io.h"
#include "ntos/wait.h"
#include "wine/wineKernel.h"

namespace {

// One to have the thread running, one behind what lay below the first, and one to spare.
constexpr u32 kTurns = 3;
constexpr i64 kPause = -100'000;  // 10 ms, in which the running thread takes the next device

constinit KEVENT served = {};

NTSTATUS refuse(DEVICE_OBJECT* /*device*/, IRP* request) {
  u8 const minor = IoGetCurrentIrpStackLocation(request)->MinorFunction;
  if (minor == IRP_MN_QUERY_DEVICE_RELATIONS) KeSetEvent(&served, 0, 0);
  request->IoStatus.Status = STATUS_NOT_SUPPORTED;
  IoCompleteRequest(request, IO_NO_INCREMENT);
  return STATUS_NOT_SUPPORTED;
}

}  // namespace

NTSTATUS tEnumerator::open(DRIVER_OBJECT& driver) {
  driver.MajorFunction[IRP_MJ_PNP] = &refuse;
  KeInitializeEvent(&served, SynchronizationEvent, 0);
  NTSTATUS const status = IoCreateDevice(&driver, 0, nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device);
  if (NT_SUCCESS(status)) device->Flags &= ~DO_DEVICE_INITIALIZING;
  return status;
}

void tEnumerator::close() {
  if (device != nullptr) IoDeleteDevice(device);
  device = nullptr;
}

void tEnumerator::settle() {
  for (u32 turn = 0; turn < kTurns; ++turn) {
    IoInvalidateDeviceRelations(device, BusRelations);
    KeWaitForSingleObject(&served, Executive, KernelMode, 0, nullptr);
    LARGE_INTEGER pause;
    pause.QuadPart = kPause;
    KeDelayExecutionThread(KernelMode, 0, &pause);
  }
}
