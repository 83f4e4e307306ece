#include <sys/stat.h>

#include "file/call.h"
#include "file/lateCall.h"
#include "file/systemStatus.h"
#include "irqlCheck.h"
#include "ntos/file.h"

namespace ntoshost {
namespace {

constexpr i64 kStatBlock = 512;  // bytes in a unit of st_blocks

NTSTATUS describe(HANDLE handle, FILE_STANDARD_INFORMATION& information) {
  OpenFile const* const file = g_files.handles.find(handle);
  if (file == nullptr) return STATUS_INVALID_HANDLE;
  if (file->isInvalidated) return STATUS_OBJECT_TYPE_MISMATCH;
  struct stat facts;
  if (fstat(file->descriptor, &facts) != 0) return systemStatus();
  information = FILE_STANDARD_INFORMATION{};
  information.AllocationSize.QuadPart = facts.st_blocks * kStatBlock;
  information.EndOfFile.QuadPart = file->isDirectory ? 0 : facts.st_size;
  information.NumberOfLinks = static_cast<u32>(facts.st_nlink);
  information.Directory = file->isDirectory;
  return STATUS_SUCCESS;
}

NTSTATUS query(HANDLE handle, void* information, u32 length, FILE_INFORMATION_CLASS kind) {
  NTSTATUS const failure = g_files.failures.take(FileCallKind::Query);
  if (failure != STATUS_SUCCESS) return failure;
  if (kind != FileStandardInformation) return STATUS_INVALID_INFO_CLASS;
  if (length < sizeof(FILE_STANDARD_INFORMATION)) return STATUS_INFO_LENGTH_MISMATCH;
  return describe(handle, *static_cast<FILE_STANDARD_INFORMATION*>(information));
}

}  // namespace
}  // namespace ntoshost

NTSTATUS ZwQueryInformationFile(HANDLE file, IO_STATUS_BLOCK* result, void* information, u32 length,
                                FILE_INFORMATION_CLASS kind) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, "ZwQueryInformationFile");
  LateCall const late("ZwQueryInformationFile");
  Call call(FileCallKind::Query);
  call->handle = file;
  call->length = length;
  NTSTATUS const status = query(file, information, length, kind);
  result->Status = status;
  result->Information = NT_SUCCESS(status) ? sizeof(FILE_STANDARD_INFORMATION) : 0;
  return call.finish(status);
}
