#include "io/openFiles.h"

#include <stdlib.h>

#include "io/driverTable.h"
#include "io/names.h"
#include "io/send.h"
#include "io/unloading.h"
#include "ntos/string.h"
#include "ntoshost/devices.h"
#include "ntoshost/violation.h"
#include "pnp/removal.h"

namespace ntoshost {
namespace {

// Under the devices' lock.
constinit FILE_OBJECT* g_files = nullptr;

bool isOpen(FILE_OBJECT const* file) {
  FILE_OBJECT const* each = g_files;
  while (each != nullptr && each != file) each = each->newer;
  return each != nullptr;
}

bool isReady(DEVICE_OBJECT* device) {
  return !endOf(device->DriverObject).isStopped && (device->Flags & DO_DEVICE_INITIALIZING) == 0 &&
         !recordOf(device).isDeleted && !recordOf(bottomOf(device)).isShut;
}

NTSTATUS add(FILE_OBJECT* file) {
  DEVICE_OBJECT* const device = file->device;
  if (!isReady(device)) return STATUS_NO_SUCH_DEVICE;
  if (!mayOpen(recordOf(device).security)) return STATUS_ACCESS_DENIED;
  if (recordOf(device).isExclusive && device->ReferenceCount != 0) return STATUS_ACCESS_DENIED;
  ++device->ReferenceCount;
  addReference(device);
  file->newer = g_files;
  g_files = file;
  return STATUS_SUCCESS;
}

void remove(FILE_OBJECT* file) {
  DevicesLock const lock;
  FILE_OBJECT** link = &g_files;
  while (*link != file) link = &(*link)->newer;
  *link = file->newer;
  --file->device->ReferenceCount;
  dropReference(file->device, "closeDevice");
  free(file);
}

// The end of a handle, which others may have waited for.
void forget(FILE_OBJECT* file) {
  remove(file);
  removeWhatWaited();
  unloadWhatWaited();
}

Request fileRequest(FILE_OBJECT* file, u8 major) {
  Request request = {.major = major, .file = file, .mode = UserMode};
  request.result.Status = STATUS_SUCCESS;
  return request;
}

NTSTATUS sendCreate(FILE_OBJECT* file) {
  Request request = fileRequest(file, IRP_MJ_CREATE);
  return sendRequest(file->device, request);
}

void sendSurely(FILE_OBJECT* file, u8 major) {
  Request request = fileRequest(file, major);
  sendRequestSurely(file->device, request);
}

// The device that the finder finds, opened but not yet asked.
template <class Finder>
NTSTATUS makeFile(Finder find, FILE_OBJECT** result) {
  FILE_OBJECT* const file = static_cast<FILE_OBJECT*>(calloc(1, sizeof(FILE_OBJECT)));
  if (file == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  DevicesLock const lock;
  file->device = find();
  NTSTATUS const status = file->device == nullptr ? STATUS_OBJECT_NAME_NOT_FOUND : add(file);
  if (NT_SUCCESS(status)) {
    *result = file;
  } else {
    free(file);
  }
  return status;
}

template <class Finder>
NTSTATUS open(Finder find, FILE_OBJECT** result) {
  *result = nullptr;
  FILE_OBJECT* file = nullptr;
  NTSTATUS status = makeFile(find, &file);
  if (!NT_SUCCESS(status)) return status;
  status = sendCreate(file);
  if (NT_SUCCESS(status)) {
    *result = file;
    return status;
  }
  forget(file);
  return status;
}

}  // namespace

void requireOpen(FILE_OBJECT const* file, char const* call) {
  DevicesLock const lock;
  if (isOpen(file)) return;
  violation("%s was given something at %p that is no open file.", call,
            static_cast<void const*>(file));
}

u64 countFiles() {
  DevicesLock const lock;
  u64 count = 0;
  for (FILE_OBJECT const* file = g_files; file != nullptr; file = file->newer) ++count;
  return count;
}

void visitFiles(void (*visit)(FILE_OBJECT const& file)) {
  DevicesLock const lock;
  for (FILE_OBJECT const* file = g_files; file != nullptr; file = file->newer) visit(*file);
}

NTSTATUS openDevice(wchar_t const* name, FILE_OBJECT** file) {
  UNICODE_STRING text;
  RtlInitUnicodeString(&text, name);
  return open([&] { return findNamed(text); }, file);
}

NTSTATUS openDevice(DEVICE_OBJECT* device, FILE_OBJECT** file) {
  auto const find = [&] {
    requireDevice(device, "openDevice");
    return device;
  };
  return open(find, file);
}

void closeDevice(FILE_OBJECT* file) {
  requireOpen(file, "closeDevice");
  sendSurely(file, IRP_MJ_CLEANUP);
  sendSurely(file, IRP_MJ_CLOSE);
  forget(file);
}

}  // namespace ntoshost
