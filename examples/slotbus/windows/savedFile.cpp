#include "slotbus/windows/savedFile.h"

#include "slotbus/component/component.h"
#include "slotbus/windows/openFile.h"

void saveFile(wchar_t const* path, u8 const* bytes, u32 size, nOXDIAG100::tStatus2& status) {
  if (status.isError()) return;
  HANDLE file = nullptr;
  NTSTATUS const opened = openFile(path, GENERIC_WRITE, 0, FILE_OVERWRITE_IF, file);
  if (!NT_SUCCESS(opened)) {
    OXDIAG_SET_STATUS(status, opened);
    return;
  }
  IO_STATUS_BLOCK result;
  NTSTATUS const moved =
      ZwWriteFile(file, nullptr, nullptr, nullptr, &result, bytes, size, nullptr, nullptr);
  if (!NT_SUCCESS(moved)) OXDIAG_SET_STATUS(status, moved);
  ZwClose(file);
}
