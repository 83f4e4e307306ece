#include "slotbus/windows/openFile.h"

#include "ntos/string.h"

namespace {

constexpr u32 kFlags = OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE;
constexpr u32 kOptions = FILE_SYNCHRONOUS_IO_NONALERT | FILE_NON_DIRECTORY_FILE;

}  // namespace

NTSTATUS openFile(wchar_t const* path, ACCESS_MASK access, u32 share, u32 disposition,
                  HANDLE& file) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, kFlags, nullptr, nullptr);
  IO_STATUS_BLOCK result;
  return ZwCreateFile(&file, access | SYNCHRONIZE, &attributes, &result, nullptr,
                      FILE_ATTRIBUTE_NORMAL, share, disposition, kOptions, nullptr, 0);
}
