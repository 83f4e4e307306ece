#include "slotbus/windows/tRackFile.h"

#include "slotbus/component/component.h"
#include "slotbus/component/statusCodes.h"
#include "slotbus/windows/openFile.h"

using nOXDIAG100::tStatus2;

namespace {

NTSTATUS inquireSize(HANDLE file, u64& size) {
  IO_STATUS_BLOCK result;
  FILE_STANDARD_INFORMATION information;
  NTSTATUS const status = ZwQueryInformationFile(file, &result, &information, sizeof(information),
                                                 FileStandardInformation);
  size = NT_SUCCESS(status) ? static_cast<u64>(information.EndOfFile.QuadPart) : 0;
  return status;
}

}  // namespace

void tRackFile::read(wchar_t const* path, tStatus2& status) {
  if (status.isError()) return;
  HANDLE file = nullptr;
  NTSTATUS const opened = openFile(path, GENERIC_READ, FILE_SHARE_READ, FILE_OPEN, file);
  if (!NT_SUCCESS(opened)) {
    OXDIAG_SET_STATUS(status, opened);
    return;
  }
  readFrom(file, status);
  ZwClose(file);
}

void tRackFile::readFrom(HANDLE file, tStatus2& status) {
  u64 size = 0;
  NTSTATUS const inquired = inquireSize(file, size);
  if (!NT_SUCCESS(inquired)) OXDIAG_SET_STATUS(status, inquired);
  if (size > nSLOTBUS100::kMaxRackTextLength) {
    OXDIAG_SET_STATUS(status, nSLOTBUS100::kStatusTextTooLong);
  }
  i32 allocated = 0;
  text.allocate(size, kMemScratch, allocated);
  if (allocated < 0) OXDIAG_SET_STATUS(status, allocated);
  readText(file, static_cast<u32>(size), status);
}

void tRackFile::readText(HANDLE file, u32 size, tStatus2& status) {
  while (length < size && !status.isError()) {
    IO_STATUS_BLOCK result;
    NTSTATUS const moved = ZwReadFile(file, nullptr, nullptr, nullptr, &result, text.get() + length,
                                      size - static_cast<u32>(length), nullptr, nullptr);
    if (moved == STATUS_END_OF_FILE) return;
    if (!NT_SUCCESS(moved)) OXDIAG_SET_STATUS(status, moved);
    if (!NT_SUCCESS(moved) || result.Information == 0) return;
    length += result.Information;
  }
}
