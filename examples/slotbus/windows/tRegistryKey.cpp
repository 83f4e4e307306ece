#include "slotbus/windows/tRegistryKey.h"

#include "ntos/string.h"

namespace {

constexpr u32 kMaxDataLength = (tRegistryKey::kMaxTextLength + 1) * sizeof(wchar_t);

struct tTextValue {
  KEY_VALUE_PARTIAL_INFORMATION head;
  u8 data[kMaxDataLength];
};

// The data of a value may or may not end with a terminator.
void copyText(KEY_VALUE_PARTIAL_INFORMATION const& value, wchar_t* text) {
  u32 const length = value.DataLength / sizeof(wchar_t);
  __builtin_memcpy(text, value.Data, length * sizeof(wchar_t));
  text[length] = L'\0';
}

}  // namespace

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

NTSTATUS tRegistryKey::readText(wchar_t const* name, wchar_t (&text)[kMaxTextLength + 1]) const {
  text[0] = L'\0';
  if (!NT_SUCCESS(openStatus)) return openStatus;
  UNICODE_STRING valueName;
  RtlInitUnicodeString(&valueName, name);
  tTextValue value;
  u32 needed = 0;
  NTSTATUS const status =
      ZwQueryValueKey(key, &valueName, KeyValuePartialInformation, &value, sizeof(value), &needed);
  if (!NT_SUCCESS(status)) return status;
  if (value.head.Type != REG_SZ) return STATUS_OBJECT_TYPE_MISMATCH;
  if (value.head.DataLength > kMaxTextLength * sizeof(wchar_t)) return STATUS_BUFFER_OVERFLOW;
  copyText(value.head, text);
  return STATUS_SUCCESS;
}
