#include "slotbus/windows/tRegistryText.h"

#include "ntos/string.h"

NTSTATUS tRegistryText::read(HANDLE key, wchar_t const* name) {
  // The data of a value may or may not end with a terminator, so there is room for one more.
  length = 0;
  i32 allocated = 0;
  block.allocate(kHeadLength + kMaxDataLength + 2 * sizeof(wchar_t), kMemScratch, allocated);
  if (allocated < 0) return STATUS_INSUFFICIENT_RESOURCES;
  UNICODE_STRING valueName;
  RtlInitUnicodeString(&valueName, name);
  u32 needed = 0;
  NTSTATUS const status = ZwQueryValueKey(key, &valueName, KeyValuePartialInformation, getValue(),
                                          kHeadLength + kMaxDataLength + sizeof(wchar_t), &needed);
  if (!NT_SUCCESS(status)) return status;
  if (getValue()->Type != REG_SZ) return STATUS_OBJECT_TYPE_MISMATCH;
  length = getValue()->DataLength / sizeof(wchar_t);
  getCharacters()[length] = L'\0';
  return STATUS_SUCCESS;
}
