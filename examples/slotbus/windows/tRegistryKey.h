#pragma once

#include "ntos/registry.h"

// Text values of one registry key. IRQL: PASSIVE_LEVEL.
class tRegistryKey {
 public:
  static constexpr u32 kMaxTextLength = 260;  // characters of a text value

  // Opens the key that a kernel path names; when that fails, every read gives that failure.
  explicit tRegistryKey(UNICODE_STRING* path);
  explicit tRegistryKey(wchar_t const* path);
  ~tRegistryKey();
  tRegistryKey(tRegistryKey const&) = delete;
  tRegistryKey& operator=(tRegistryKey const&) = delete;

  // Reads a text value (REG_SZ) into `text`, always terminated. Returns 0, or the kernel's reason
  // with an empty text: STATUS_OBJECT_NAME_NOT_FOUND when there is no such value,
  // STATUS_OBJECT_TYPE_MISMATCH when it is no text, STATUS_BUFFER_OVERFLOW when it is too long.
  NTSTATUS readText(wchar_t const* name, wchar_t (&text)[kMaxTextLength + 1]) const;

 private:
  void open(UNICODE_STRING* path);

  HANDLE key = nullptr;
  NTSTATUS openStatus = STATUS_SUCCESS;
};
