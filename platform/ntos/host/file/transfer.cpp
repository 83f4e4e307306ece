#include <string.h>
#include <unistd.h>

#include "file/call.h"
#include "file/lateCall.h"
#include "file/systemStatus.h"
#include "irqlCheck.h"
#include "ntos/file.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

// Values of an offset that stand for a place.
constexpr i64 kToEnd = -1;
constexpr i64 kToPosition = -2;

void requireDone(void const* event, void const* routine, u32 const* key, char const* call) {
  if (event == nullptr && routine == nullptr && key == nullptr) return;
  violation("%s was given an event, a completion routine or a key; this is not done.", call);
}

void note(FileCall& entry, HANDLE file, u32 length, LARGE_INTEGER const* offset) {
  entry.handle = file;
  entry.length = length;
  entry.hasOffset = offset != nullptr;
}

// Finds the open file that a handle stands for.
NTSTATUS find(HANDLE handle, OpenFile*& file) {
  file = g_files.handles.find(handle);
  if (file == nullptr) return STATUS_INVALID_HANDLE;
  return file->isInvalidated ? STATUS_OBJECT_TYPE_MISMATCH : STATUS_SUCCESS;
}

// Moves the position of the file to where the transfer begins.
NTSTATUS seek(OpenFile& file, LARGE_INTEGER const* offset) {
  if (file.isDirectory) return STATUS_INVALID_PARAMETER;
  i64 const wanted = offset == nullptr ? kToPosition : offset->QuadPart;
  if (wanted < kToPosition) return STATUS_INVALID_PARAMETER;
  if (wanted >= 0) file.position = static_cast<u64>(wanted);
  if (wanted != kToEnd && !file.appendsOnly()) return STATUS_SUCCESS;
  if (file.appendsOnly() && !file.mayRead()) return STATUS_SUCCESS;  // the position is never used
  off_t const end = lseek(file.descriptor, 0, SEEK_END);
  if (end < 0) return systemStatus();
  file.position = static_cast<u64>(end);
  return STATUS_SUCCESS;
}

NTSTATUS takeRoom(Drive& drive, u32 length) {
  if (!drive.isLimited) return STATUS_SUCCESS;
  if (drive.room < length) return STATUS_DISK_FULL;
  drive.room -= length;
  return STATUS_SUCCESS;
}

// A descriptor that appends writes at the end whatever the offset says.
NTSTATUS writeBytes(OpenFile& file, u8 const* bytes, u32 length, u64& moved) {
  while (moved < length) {
    ssize_t const count =
        pwrite(file.descriptor, bytes + moved, length - moved, static_cast<off_t>(file.position));
    if (count < 0) return systemStatus();
    moved += static_cast<u64>(count);
    file.position += static_cast<u64>(count);
  }
  return STATUS_SUCCESS;
}

NTSTATUS write(HANDLE handle, void const* bytes, u32 length, LARGE_INTEGER const* offset,
               u64& moved) {
  NTSTATUS const failure = g_files.failures.take(FileCallKind::Write);
  if (failure != STATUS_SUCCESS) {
    if (!NT_SUCCESS(failure)) moved = length;  // the kernel promises nothing about it then
    return failure;
  }
  OpenFile* file = nullptr;
  NTSTATUS status = find(handle, file);
  if (NT_SUCCESS(status) && !file->mayWrite()) status = STATUS_ACCESS_DENIED;
  if (NT_SUCCESS(status)) status = seek(*file, offset);
  if (NT_SUCCESS(status)) status = takeRoom(*file->drive, length);
  return NT_SUCCESS(status) ? writeBytes(*file, static_cast<u8 const*>(bytes), length, moved)
                            : status;
}

NTSTATUS read(HANDLE handle, void* buffer, u32 length, LARGE_INTEGER const* offset, u64& moved) {
  NTSTATUS const failure = g_files.failures.take(FileCallKind::Read);
  if (failure != STATUS_SUCCESS) return failure;
  OpenFile* file = nullptr;
  NTSTATUS status = find(handle, file);
  if (NT_SUCCESS(status) && !file->mayRead()) status = STATUS_ACCESS_DENIED;
  if (NT_SUCCESS(status)) status = seek(*file, offset);
  if (!NT_SUCCESS(status)) return status;
  ssize_t const count = pread(file->descriptor, buffer, length, static_cast<off_t>(file->position));
  if (count < 0) return systemStatus();
  if (count == 0 && length != 0) return STATUS_END_OF_FILE;
  moved = static_cast<u64>(count);
  file->position += moved;
  return STATUS_SUCCESS;
}

void noteFailedWrite(NTSTATUS status) {
  if (NT_SUCCESS(status)) return;
  FailedWrites& failed = g_files.failedWrites;
  if (failed.count++ == 0) failed.first = status;
}

NTSTATUS finish(Call& call, IO_STATUS_BLOCK& result, NTSTATUS status, u64 moved) {
  result.Status = status;
  result.Information = moved;
  return call.finish(status);
}

}  // namespace
}  // namespace ntoshost

NTSTATUS ZwReadFile(HANDLE file, HANDLE event, void* routine, void*, IO_STATUS_BLOCK* result,
                    void* buffer, u32 length, LARGE_INTEGER* offset, u32* key) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, "ZwReadFile");
  LateCall const late("ZwReadFile");
  requireDone(event, routine, key, "ZwReadFile");
  Call call(FileCallKind::Read);
  note(call.getEntry(), file, length, offset);
  u64 moved = 0;
  NTSTATUS const status = ntoshost::read(file, buffer, length, offset, moved);
  return finish(call, *result, status, moved);
}

NTSTATUS ZwWriteFile(HANDLE file, HANDLE event, void* routine, void*, IO_STATUS_BLOCK* result,
                     void const* buffer, u32 length, LARGE_INTEGER* offset, u32* key) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, "ZwWriteFile");
  LateCall const late("ZwWriteFile");
  requireDone(event, routine, key, "ZwWriteFile");
  Call call(FileCallKind::Write);
  note(call.getEntry(), file, length, offset);
  memcpy(call->bytes, buffer,
         length < FileCall::kBytesCapacity ? length : FileCall::kBytesCapacity);
  u64 moved = 0;
  NTSTATUS const status = ntoshost::write(file, buffer, length, offset, moved);
  noteFailedWrite(status);
  return finish(call, *result, status, moved);
}
