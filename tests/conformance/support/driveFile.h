#pragma once

// A file on drive C as another program sees it, by the kernel's own calls: the same on every
// target.

#include "ntos/file.h"
#include "ntos/string.h"

// What was read last; one file at a time in a test.
inline constinit char driveFileStorage[4096] = {};

class tDriveFile {
 public:
  // `path` is a kernel path such as \??\C:\oxdiag-test.out and outlives the object.
  explicit tDriveFile(wchar_t const* path) : path(path) {}

  // Empties the file, or creates it, and writes `text`. False when that fails.
  bool write(char const* text) const {
    HANDLE file = nullptr;
    if (open(file, GENERIC_WRITE, kShareAll, FILE_OVERWRITE_IF) < 0) return false;
    IO_STATUS_BLOCK result;
    NTSTATUS const status = ZwWriteFile(file, nullptr, nullptr, nullptr, &result, text,
                                        static_cast<u32>(__builtin_strlen(text)), nullptr, nullptr);
    ZwClose(file);
    return status >= 0;
  }

  // Reads the file, while others may have it open. False when that fails.
  bool read() {
    HANDLE file = nullptr;
    length = 0;
    if (open(file, GENERIC_READ, kShareAll, FILE_OPEN) < 0) return false;
    IO_STATUS_BLOCK result;
    while (length < sizeof(driveFileStorage) - 1 &&
           ZwReadFile(file, nullptr, nullptr, nullptr, &result, driveFileStorage + length,
                      static_cast<u32>(sizeof(driveFileStorage) - 1 - length), nullptr,
                      nullptr) >= 0) {
      length += static_cast<u32>(result.Information);
    }
    driveFileStorage[length] = 0;
    ZwClose(file);
    return true;
  }

  // Of the last read(); the text has a terminator behind it.
  char const* getText() const { return driveFileStorage; }
  u32 getLength() const { return length; }

  // What opening the file gives that shares nothing, so that nobody else may have it open.
  NTSTATUS openAlone() const {
    HANDLE file = nullptr;
    NTSTATUS const status = open(file, GENERIC_READ, 0, FILE_OPEN);
    if (status >= 0) ZwClose(file);
    return status;
  }

 private:
  static constexpr u32 kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

  NTSTATUS open(HANDLE& file, ACCESS_MASK access, u32 share, u32 disposition) const {
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, path);
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE,
                               nullptr, nullptr);
    IO_STATUS_BLOCK result;
    return ZwCreateFile(&file, access | SYNCHRONIZE, &attributes, &result, nullptr,
                        FILE_ATTRIBUTE_NORMAL, share, disposition,
                        FILE_SYNCHRONOUS_IO_NONALERT | FILE_NON_DIRECTORY_FILE, nullptr, 0);
  }

  wchar_t const* path;
  u32 length = 0;
};
