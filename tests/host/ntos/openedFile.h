#pragma once

// Files opened by the kernel's calls, with what most tests do not care about filled in.

#include "driveFolder.h"
#include "ntos/file.h"
#include "ntos/string.h"

constexpr u32 kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr wchar_t kFileName[] = L"\\??\\C:\\one";

struct tOpening {
  wchar_t const* name;
  ACCESS_MASK access = GENERIC_READ | GENERIC_WRITE | SYNCHRONIZE;
  u32 disposition = FILE_OPEN_IF;
  u32 share = kShareAll;
  u32 options = FILE_NON_DIRECTORY_FILE;
  u32 flags = OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE;
  HANDLE root = nullptr;
};

// Closes its handle at the end, unless that is no longer open.
class tOpenedFile {
 public:
  explicit tOpenedFile(tOpening const& opening) {
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, opening.name);
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &name, opening.flags, opening.root, nullptr);
    status = ZwCreateFile(&handle, opening.access, &attributes, &result, nullptr,
                          FILE_ATTRIBUTE_NORMAL, opening.share, opening.disposition,
                          opening.options | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
    if (!NT_SUCCESS(status)) handle = nullptr;
  }
  explicit tOpenedFile(wchar_t const* name) : tOpenedFile(tOpening{.name = name}) {}
  ~tOpenedFile() { close(); }
  tOpenedFile(tOpenedFile const&) = delete;
  tOpenedFile& operator=(tOpenedFile const&) = delete;

  bool isOpen() const { return handle != nullptr; }

  void close() {
    if (handle != nullptr) ZwClose(handle);
    handle = nullptr;
  }

  NTSTATUS write(std::string const& text, i64 const* place = nullptr) {
    LARGE_INTEGER offset;
    if (place != nullptr) offset.QuadPart = *place;
    return ZwWriteFile(handle, nullptr, nullptr, nullptr, &result, text.data(),
                       static_cast<u32>(text.size()), place == nullptr ? nullptr : &offset,
                       nullptr);
  }

  // What can be read of `size` bytes.
  std::string read(u32 size, i64 const* place = nullptr) {
    LARGE_INTEGER offset;
    if (place != nullptr) offset.QuadPart = *place;
    std::string text(size, '#');
    status = ZwReadFile(handle, nullptr, nullptr, nullptr, &result, text.data(), size,
                        place == nullptr ? nullptr : &offset, nullptr);
    text.resize(NT_SUCCESS(status) ? result.Information : 0);
    return text;
  }

  HANDLE handle = nullptr;
  NTSTATUS status = STATUS_SUCCESS;  // of the last open or read
  IO_STATUS_BLOCK result = {};
};

inline NTSTATUS openingStatus(tOpening const& opening) {
  return tOpenedFile(opening).status;
}
