#include "wine/tRackPlace.h"

#include "ntos/io.h"
#include "ntos/string.h"
#include "vexkntos/handlerOf.h"
#include "wine/rackDriver.h"
#include "wine/wineKernel.h"

namespace {

constexpr wchar_t kHardwareIds[] = L"ROOT\\SLOTBUS\0";
constexpr wchar_t kClass[] = L"System";
constexpr wchar_t kClassGUID[] = L"{4d36e97d-e325-11ce-bfc1-08002be10318}";

// A key is made below one that is there. That of the place itself follows.
constexpr wchar_t const* kKeys[] = {
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Enum\\ROOT",
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Enum\\ROOT\\SLOTBUS",
};

NTSTATUS openKey(wchar_t const* path, HANDLE& key) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, nullptr,
                             nullptr);
  return ZwCreateKey(&key, kKeyAllAccess, &attributes, 0, nullptr, kKeyIsVolatile, nullptr);
}

NTSTATUS setBytes(HANDLE key, wchar_t const* name, u32 type, wchar_t const* text, size_t bytes) {
  UNICODE_STRING valueName;
  RtlInitUnicodeString(&valueName, name);
  return ZwSetValueKey(key, &valueName, 0, type, text, static_cast<u32>(bytes));
}

template <size_t size>
NTSTATUS setValue(HANDLE key, wchar_t const* name, u32 type, wchar_t const (&text)[size]) {
  return setBytes(key, name, type, text, sizeof(text));
}

NTSTATUS forget(HANDLE key) {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, L"Service");
  return ZwDeleteValueKey(key, &name);
}

}  // namespace

NTSTATUS tRackPlace::openPlace(HANDLE& key) const {
  NTSTATUS status = STATUS_SUCCESS;
  wchar_t const* const paths[] = {kKeys[0], kKeys[1], service.instance};
  for (wchar_t const* path : paths) {
    if (key != nullptr) ZwClose(key);
    key = nullptr;
    status = openKey(path, key);
    if (!NT_SUCCESS(status)) return status;
  }
  return status;
}

NTSTATUS tRackPlace::describe(HANDLE key) const {
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, service.name);
  NTSTATUS status = setValue(key, L"HardwareID", REG_MULTI_SZ, kHardwareIds);
  if (NT_SUCCESS(status)) status = setValue(key, L"Class", REG_SZ, kClass);
  if (NT_SUCCESS(status)) status = setValue(key, L"ClassGUID", REG_SZ, kClassGUID);
  if (!NT_SUCCESS(status)) return status;
  return setBytes(key, L"Service", REG_SZ, service.name, name.MaximumLength);
}

NTSTATUS tRackPlace::plugIn() {
  HANDLE key = nullptr;
  NTSTATUS status = openPlace(key);
  if (NT_SUCCESS(status)) status = describe(key);
  if (key != nullptr) ZwClose(key);
  return status;
}

void tRackPlace::invalidate() {
  DRIVER_OBJECT* const driver = findRackDriver(service);
  if (driver == nullptr) return;
  DEVICE_OBJECT* const bus = findRackBus(*driver);
  if (bus != nullptr) {
    IoInvalidateDeviceRelations(vexHandlerOf(*bus).getPhysicalDevice(), BusRelations);
  }
  ObfDereferenceObject(driver);
}

NTSTATUS tRackPlace::pullOut() {
  HANDLE key = nullptr;
  NTSTATUS status = openPlace(key);
  if (NT_SUCCESS(status)) status = forget(key);
  if (key != nullptr) ZwClose(key);
  if (NT_SUCCESS(status)) wine_enumerate_root_devices(service.name);
  return status;
}
