#pragma once

#include "ntos/registry.h"
#include "slotbus/windows/tRegistryText.h"

// Text values of one registry key. IRQL: PASSIVE_LEVEL.
class tRegistryKey {
 public:
  // Opens the key that a kernel path names; when that fails, every read gives that failure.
  explicit tRegistryKey(UNICODE_STRING* path);
  explicit tRegistryKey(wchar_t const* path);
  ~tRegistryKey();
  tRegistryKey(tRegistryKey const&) = delete;
  tRegistryKey& operator=(tRegistryKey const&) = delete;

  // Returns what text.read() returns.
  NTSTATUS readText(wchar_t const* name, tRegistryText& text) const;

 private:
  void open(UNICODE_STRING* path);

  HANDLE key = nullptr;
  NTSTATUS openStatus = STATUS_SUCCESS;
};
