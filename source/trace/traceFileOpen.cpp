#include "trace/traceFileOpen.h"

#include "ntos/file.h"
#include "ntos/string.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kNameLimit = 128;  // characters, with the terminator
constexpr u32 kPathStart = 3;    // behind the drive letter, the colon and the separator
constexpr u32 kFlags = OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE;
constexpr u32 kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr ACCESS_MASK kDirectoryAccess = SYNCHRONIZE | FILE_LIST_DIRECTORY;
constexpr ACCESS_MASK kFileAccess = SYNCHRONIZE | FILE_APPEND_DATA;
constexpr u32 kDirectoryOptions =
    FILE_DIRECTORY_FILE | FILE_SYNCHRONOUS_IO_NONALERT | FILE_OPEN_FOR_BACKUP_INTENT;
constexpr u32 kFileOptions =
    FILE_NON_DIRECTORY_FILE | FILE_SYNCHRONOUS_IO_NONALERT | FILE_WRITE_THROUGH;

bool isLetter(char character) {
  char const lower = static_cast<char>(character | 0x20);
  return lower >= 'a' && lower <= 'z';
}

bool isSeparator(char character) {
  return character == '/' || character == '\\';
}

// A second separator would, on a drive that is not there, make the rest a full path of its own.
bool isSupported(char const* name) {
  return isLetter(name[0]) && name[1] == ':' && isSeparator(name[2]) &&
         !isSeparator(name[kPathStart]) && __builtin_strlen(name) < kNameLimit;
}

// Bytes from 0x80 on are widened with their sign, to 0xFF80 and up.
void widen(char const* name, wchar_t (&wide)[kNameLimit]) {
  __builtin_memset(wide, 0, sizeof(wide));
  for (u32 index = 0; name[index] != 0; ++index) {
    wide[index] = static_cast<wchar_t>(static_cast<i8>(name[index]));
  }
}

HANDLE openDirectory(wchar_t drive) {
  wchar_t path[] = L"\\??\\x:\\";
  path[4] = drive;
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, kFlags, nullptr, nullptr);
  IO_STATUS_BLOCK result;
  HANDLE directory = nullptr;
  NTSTATUS const status = ZwCreateFile(&directory, kDirectoryAccess, &attributes, &result, nullptr,
                                       0, kShare, FILE_OPEN, kDirectoryOptions, nullptr, 0);
  return NT_SUCCESS(status) ? directory : nullptr;
}

NTSTATUS openRelative(OBJECT_ATTRIBUTES const& attributes, u32 disposition, HANDLE& file) {
  IO_STATUS_BLOCK result;
  return ZwCreateFile(&file, kFileAccess, &attributes, &result, nullptr, FILE_ATTRIBUTE_NORMAL,
                      kShare, disposition, kFileOptions, nullptr, 0);
}

HANDLE openFile(HANDLE directory, wchar_t const* path, bool overwrites) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, kFlags, directory, nullptr);
  HANDLE file = nullptr;
  NTSTATUS status = STATUS_SHARING_VIOLATION;
  if (overwrites) status = openRelative(attributes, FILE_OVERWRITE_IF, file);
  if (status == STATUS_SHARING_VIOLATION) status = openRelative(attributes, FILE_OPEN_IF, file);
  return NT_SUCCESS(status) ? file : nullptr;
}

}  // namespace

tTraceFileHandles openTraceFile(char const* name, bool overwrites) {
  if (!isSupported(name)) return {nullptr, nullptr};
  wchar_t wide[kNameLimit];
  widen(name, wide);
  // A drive that is not there shows in the next step, which then has no directory to start from.
  HANDLE const directory = openDirectory(wide[0]);
  HANDLE const file = openFile(directory, wide + kPathStart, overwrites);
  if (file != nullptr) return {directory, file};
  if (directory != nullptr) ZwClose(directory);
  return {nullptr, nullptr};
}

}  // namespace nOXDIAG100
