// oxdiagboot.sys, for tests only: does for the family what the kernel does where the kernel at hand
// does not. It initialises vexk, qelmk and oxdiagk and then loads the driver whose service key its
// own key names in the value "Driver", beside the driver of the control device. With a value "Rack"
// in its key it plugs a rack in before, and pulls it out at the end. Unloading it undoes all.

#include "bugChecks.h"
#include "demandDevice.h"
#include "ntos/debug.h"
#include "ntos/driver.h"
#include "ntos/registry.h"
#include "ntos/status.h"
#include "ntos/string.h"
#include "tBootedModules.h"
#include "vexk/eventLog.h"
#include "wine/tEnumerator.h"
#include "wine/tRackPlace.h"

namespace {

constexpr u32 kValueSize = 512;  // bytes; a service key path has fewer

struct tDriverKey {
  alignas(KEY_VALUE_PARTIAL_INFORMATION) u8 storage[kValueSize];
  UNICODE_STRING path;
};

UNICODE_STRING controlKey() {
  UNICODE_STRING key;
  RtlInitUnicodeString(&key,
                       L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\oxdiagcontrol");
  return key;
}

constinit tBootedModules modules;
constinit tDriverKey driverKey = {};
constinit tEnumerator enumerator;
constinit bool isRackIn = false;

NTSTATUS queryValue(UNICODE_STRING* bootKey, wchar_t const* valueName) {
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, bootKey, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE,
                             nullptr, nullptr);
  HANDLE key = nullptr;
  NTSTATUS status = ZwOpenKey(&key, KEY_READ, &attributes);
  if (status < 0) return status;
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, valueName);
  u32 needed = 0;
  status = ZwQueryValueKey(key, &name, KeyValuePartialInformation, driverKey.storage, kValueSize,
                           &needed);
  ZwClose(key);
  return status;
}

NTSTATUS readDriverKey(UNICODE_STRING* bootKey) {
  NTSTATUS const status = queryValue(bootKey, L"Driver");
  if (status < 0) return status;
  auto* value = reinterpret_cast<KEY_VALUE_PARTIAL_INFORMATION*>(driverKey.storage);
  RtlInitUnicodeString(&driverKey.path, reinterpret_cast<wchar_t*>(value->Data));
  return STATUS_SUCCESS;
}

bool startsWith(char const* text, char const* start) {
  while (*start != '\0' && *text == *start) ++text, ++start;
  return *start == '\0';
}

// The platform's event log must tell what has just happened.
NTSTATUS demandLastEvent(char const* start) {
  tVexEvent event = {};
  for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) {
  }
  if (startsWith(event.text, start)) return STATUS_SUCCESS;
  DbgPrint("[boot] the last event is '%s'\n", event.text);
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}

// The device is there while its driver is, whatever the modules do.
NTSTATUS startControl() {
  UNICODE_STRING const key = controlKey();
  NTSTATUS status = demandDevice(STATUS_OBJECT_NAME_NOT_FOUND);
  if (status >= 0) status = ZwLoadDriver(&key);
  if (status < 0) return status;
  status = demandDevice(STATUS_SUCCESS);
  if (status < 0) ZwUnloadDriver(&key);
  return status;
}

NTSTATUS stopControl() {
  UNICODE_STRING const key = controlKey();
  NTSTATUS const status = ZwUnloadDriver(&key);
  return status < 0 ? status : demandDevice(STATUS_OBJECT_NAME_NOT_FOUND);
}

NTSTATUS startModules() {
  if (!answerBugCheckCalls()) return STATUS_DRIVER_UNABLE_TO_LOAD;
  NTSTATUS status = modules.initialise();
  if (status < 0) return status;
  status = demandLastEvent("oxdiagk.dll load: ");
  if (status >= 0) status = startControl();
  if (status < 0) modules.unload();
  return status;
}

NTSTATUS stopModules() {
  NTSTATUS const controlStatus = stopControl();
  NTSTATUS const status = modules.unload();
  if (controlStatus < 0 || status < 0) return controlStatus < 0 ? controlStatus : status;
  if (countBugCheckCallbacks() != 0) {
    DbgPrint("[boot] %u are still registered for a bug check\n", countBugCheckCallbacks());
    return STATUS_DRIVER_UNABLE_TO_LOAD;
  }
  return demandLastEvent("oxdiagk.dll unload: ");
}

NTSTATUS plugIn(UNICODE_STRING* bootKey) {
  isRackIn = queryValue(bootKey, L"Rack") >= 0;
  return isRackIn ? tRackPlace().plugIn() : STATUS_SUCCESS;
}

// Wine does not keep a removal from overtaking the enumeration.
NTSTATUS pullOut() {
  if (!isRackIn) return STATUS_SUCCESS;
  tRackPlace place;
  place.invalidate();
  enumerator.settle();
  return place.pullOut();
}

NTSTATUS bootAndLoad(UNICODE_STRING* bootKey) {
  NTSTATUS status = plugIn(bootKey);
  if (status >= 0) status = readDriverKey(bootKey);
  if (status >= 0) status = startModules();
  if (status < 0) return status;
  status = ZwLoadDriver(&driverKey.path);
  if (status >= 0) return STATUS_SUCCESS;
  pullOut();
  stopModules();
  return status;
}

NTSTATUS bootWithEnumerator(DRIVER_OBJECT& driver, UNICODE_STRING* bootKey) {
  NTSTATUS status = enumerator.open(driver);
  if (status < 0) return status;
  status = bootAndLoad(bootKey);
  if (status < 0) enumerator.close();
  return status;
}

void unload(DRIVER_OBJECT* /*driver*/) {
  NTSTATUS driverStatus = pullOut();
  if (driverStatus >= 0) driverStatus = ZwUnloadDriver(&driverKey.path);
  NTSTATUS const moduleStatus = stopModules();
  enumerator.close();
  if (driverStatus >= 0 && moduleStatus >= 0) {
    DbgPrint("[boot] unloaded\n");
  } else {
    DbgPrint("[boot] unloading failed: 0x%08X\n", driverStatus < 0 ? driverStatus : moduleStatus);
  }
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  driver->DriverUnload = &unload;
  NTSTATUS const status = bootWithEnumerator(*driver, registryPath);
  if (status < 0) DbgPrint("[boot] loading failed: 0x%08X\n", status);
  return status;
}
