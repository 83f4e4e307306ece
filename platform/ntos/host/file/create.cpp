#include <unistd.h>

#include "file/call.h"
#include "file/lateCall.h"
#include "file/openPlace.h"
#include "irqlCheck.h"
#include "ntos/file.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

// What a call that fails leaves where the handle should be: the kernel promises nothing about it.
constexpr u64 kNoHandle = 0xBAD;

constexpr wchar_t kPrefix[] = L"\\??\\";
constexpr size_t kPrefixLength = 4;
constexpr size_t kDriveLength = 2;  // letter and colon
constexpr u32 kShareBits = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Where a path starts, and what is left of it from there.
struct Start {
  int folder = -1;
  Drive* drive = nullptr;
  wchar_t const* rest = nullptr;
  size_t length = 0;
};

ACCESS_MASK withoutGenericRights(ACCESS_MASK access) {
  ACCESS_MASK specific = access & ~(GENERIC_READ | GENERIC_WRITE);
  if ((access & GENERIC_READ) != 0) specific |= FILE_READ_DATA;
  if ((access & GENERIC_WRITE) != 0) specific |= FILE_WRITE_DATA | FILE_APPEND_DATA;
  return specific;
}

bool isSound(OpenRequest const& request) {
  if (request.disposition > FILE_OVERWRITE_IF || (request.share & ~kShareBits) != 0) return false;
  if ((request.access & SYNCHRONIZE) == 0) return false;
  if (!request.wantsFolder()) return true;
  return !request.wantsFile() && !request.empties();
}

NTSTATUS startAtDrive(wchar_t const* path, size_t length, Start& start) {
  for (size_t at = 0; at < kPrefixLength; ++at) {
    if (length <= at || path[at] != kPrefix[at]) return STATUS_OBJECT_PATH_SYNTAX_BAD;
  }
  wchar_t const* const drive = path + kPrefixLength;
  size_t const taken = kPrefixLength + kDriveLength + 1;
  if (length < taken || drive[1] != ':' || !isSeparator(drive[kDriveLength])) {
    return STATUS_OBJECT_NAME_INVALID;
  }
  start.drive = g_files.drives.find(drive[0]);
  if (start.drive == nullptr || start.drive->folder < 0) return STATUS_OBJECT_PATH_NOT_FOUND;
  start.folder = start.drive->folder;
  start.rest = path + taken;
  start.length = length - taken;
  return STATUS_SUCCESS;
}

NTSTATUS startAtHandle(HANDLE root, Start& start) {
  OpenFile const* const folder = g_files.handles.find(root);
  if (folder == nullptr) return STATUS_INVALID_HANDLE;
  if (folder->isInvalidated) return STATUS_OBJECT_TYPE_MISMATCH;
  if (!folder->isDirectory) return STATUS_OBJECT_PATH_NOT_FOUND;
  start.folder = folder->descriptor;
  start.drive = folder->drive;
  return STATUS_SUCCESS;
}

NTSTATUS findStart(OBJECT_ATTRIBUTES const& attributes, Start& start) {
  start.rest = attributes.ObjectName->Buffer;
  start.length = attributes.ObjectName->Length / sizeof(wchar_t);
  if (attributes.RootDirectory != nullptr) return startAtHandle(attributes.RootDirectory, start);
  return startAtDrive(start.rest, start.length, start);
}

NTSTATUS open(OBJECT_ATTRIBUTES const& attributes, OpenRequest const& request, HANDLE& handle,
              u64& done) {
  Start start;
  NTSTATUS status = findStart(attributes, start);
  if (!NT_SUCCESS(status)) return status;
  Place place(start.folder);
  status =
      place.walk(start.rest, start.length, (attributes.Attributes & OBJ_CASE_INSENSITIVE) != 0);
  OpenFile file = {};
  if (NT_SUCCESS(status)) status = openPlace(place, request, g_files.handles, file, done);
  if (!NT_SUCCESS(status)) return status;
  file.drive = start.drive;
  handle = g_files.handles.add(file);
  if (handle != nullptr) return STATUS_SUCCESS;
  close(file.descriptor);
  return STATUS_INSUFFICIENT_RESOURCES;
}

void noteName(UNICODE_STRING const& name, FileCall& entry) {
  size_t const length = name.Length / sizeof(wchar_t);
  for (size_t at = 0; at < length && at + 1 < FileCall::kNameCapacity; ++at) {
    entry.name[at] = name.Buffer[at];
  }
}

void requireDone(OBJECT_ATTRIBUTES const& attributes, u32 options, void const* extended,
                 u32 extendedLength) {
  if (attributes.Length != sizeof(OBJECT_ATTRIBUTES)) {
    violation("ZwCreateFile was given object attributes whose Length is %u.", attributes.Length);
  }
  if ((options & FILE_SYNCHRONOUS_IO_NONALERT) == 0) {
    violation("ZwCreateFile was not asked for FILE_SYNCHRONOUS_IO_NONALERT; this is not done.");
  }
  if (extended != nullptr || extendedLength != 0) {
    violation("ZwCreateFile was given extended attributes; this is not done.");
  }
}

}  // namespace
}  // namespace ntoshost

NTSTATUS ZwCreateFile(HANDLE* file, ACCESS_MASK access, OBJECT_ATTRIBUTES const* attributes,
                      IO_STATUS_BLOCK* result, LARGE_INTEGER* allocationSize, u32 fileAttributes,
                      u32 shareAccess, u32 disposition, u32 options, void* extended,
                      u32 extendedLength) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, "ZwCreateFile");
  LateCall const late("ZwCreateFile");
  requireDone(*attributes, options, extended, extendedLength);
  Call call(FileCallKind::Create);
  noteName(*attributes->ObjectName, call.getEntry());
  call->root = attributes->RootDirectory;
  call->attributes = attributes->Attributes;
  call->access = access;
  call->hasAllocationSize = allocationSize != nullptr;
  call->fileAttributes = fileAttributes;
  call->shareAccess = shareAccess;
  call->disposition = disposition;
  call->options = options;
  *file = reinterpret_cast<HANDLE>(kNoHandle);
  NTSTATUS const failure = g_files.failures.take(FileCallKind::Create);
  if (failure != STATUS_SUCCESS) return call.finish(failure);
  OpenRequest const request = {withoutGenericRights(access), shareAccess, disposition, options};
  if (!isSound(request)) return call.finish(STATUS_INVALID_PARAMETER);
  HANDLE opened = nullptr;
  u64 done = 0;
  NTSTATUS const status = open(*attributes, request, opened, done);
  if (!NT_SUCCESS(status)) return call.finish(status);
  *file = opened;
  call->handle = opened;
  result->Status = status;
  result->Information = done;
  return call.finish(status);
}
