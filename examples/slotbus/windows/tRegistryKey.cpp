#include "slotbus/windows/tRegistryKey.h"

#include "ntos/string.h"

tRegistryKey::tRegistryKey(UNICODE_STRING* path) {
  open(path);
}

tRegistryKey::tRegistryKey(wchar_t const* path) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  open(&name);
}

tRegistryKey::~tRegistryKey() {
  if (NT_SUCCESS(openStatus)) ZwClose(key);
}

void tRegistryKey::open(UNICODE_STRING* path) {
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, path, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, nullptr,
                             nullptr);
  openStatus = ZwOpenKey(&key, KEY_QUERY_VALUE, &attributes);
}

NTSTATUS tRegistryKey::readText(wchar_t const* name, tRegistryText& text) const {
  return NT_SUCCESS(openStatus) ? text.read(key, name) : openStatus;
}
