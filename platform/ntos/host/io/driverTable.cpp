#include "io/driverTable.h"

#include <string.h>

#include "io/deviceTable.h"
#include "ntoshost/violation.h"
#include "pool/objects.h"

namespace ntoshost {
namespace {

constexpr u32 kDriverTag = ntosPoolTag("Driv");
constexpr i16 kDriverType = 4;  // what the kernel writes into Type
constexpr size_t kMostCharacters = 63;

constexpr char kDriverFolder[] = "\\Driver\\";
constexpr char kServiceFolder[] = "\\Registry\\Machine\\System\\CurrentControlSet\\Services\\";

// A driver with what its pointers lead to.
struct WholeDriver {
  DRIVER_OBJECT driver;
  DRIVER_EXTENSION extension;
  WholeDriver* next;
  UNICODE_STRING registryPath;
  DriverEnd end;
  wchar_t name[sizeof(kDriverFolder) + kMostCharacters];
  wchar_t registryText[sizeof(kServiceFolder) + kMostCharacters];
};

// Under the devices' lock.
constinit WholeDriver* g_drivers = nullptr;

void join(UNICODE_STRING& string, wchar_t* buffer, char const* folder, char const* name) {
  size_t length = 0;
  for (; *folder != 0; ++folder) buffer[length++] = static_cast<wchar_t>(*folder);
  string.Buffer = buffer;
  for (; *name != 0; ++name) buffer[length++] = static_cast<wchar_t>(*name);
  string.Length = static_cast<u16>(length * sizeof(wchar_t));
  string.MaximumLength = static_cast<u16>(string.Length + sizeof(wchar_t));
}

NTSTATUS rejectRequest(DEVICE_OBJECT*, IRP* request) {
  request->IoStatus = {{STATUS_INVALID_DEVICE_REQUEST}, 0};
  IoCompleteRequest(request, IO_NO_INCREMENT);
  return STATUS_INVALID_DEVICE_REQUEST;
}

void requireName(char const* name) {
  size_t const length = strlen(name);
  if (length > 0 && length <= kMostCharacters) return;
  violation("A driver was given a name of %zu characters; it may have 1 to %zu.", length,
            kMostCharacters);
}

void fill(WholeDriver& whole, char const* name) {
  DRIVER_OBJECT& driver = whole.driver;
  driver.Type = kDriverType;
  driver.Size = sizeof(DRIVER_OBJECT);
  driver.DriverExtension = &whole.extension;
  whole.extension.DriverObject = &driver;
  join(driver.DriverName, whole.name, kDriverFolder, name);
  join(whole.registryPath, whole.registryText, kServiceFolder, name);
  join(whole.extension.ServiceKeyName, whole.registryText, kServiceFolder, name);
  for (DRIVER_DISPATCH*& dispatch : driver.MajorFunction) dispatch = rejectRequest;
}

}  // namespace

DRIVER_OBJECT* makeDriver(char const* name) {
  requireName(name);
  WholeDriver* const whole =
      static_cast<WholeDriver*>(takeObject(BlockKind::driver, sizeof(WholeDriver), kDriverTag));
  if (whole == nullptr) return nullptr;
  fill(*whole, name);
  DevicesLock const lock;
  whole->next = g_drivers;
  g_drivers = whole;
  return &whole->driver;
}

void destroyDriver(DRIVER_OBJECT* driver, char const* call) {
  DevicesLock const lock;
  WholeDriver** link = &g_drivers;
  while (&(*link)->driver != driver) link = &(*link)->next;
  *link = (*link)->next;
  releaseObject(driver, call);
}

UNICODE_STRING* registryPathOf(DRIVER_OBJECT* driver) {
  return &reinterpret_cast<WholeDriver*>(driver)->registryPath;
}

DriverEnd& endOf(DRIVER_OBJECT* driver) {
  return reinterpret_cast<WholeDriver*>(driver)->end;
}

DRIVER_OBJECT* findDriver(bool (*isWanted)(DRIVER_OBJECT* driver)) {
  WholeDriver* each = g_drivers;
  while (each != nullptr && !isWanted(&each->driver)) each = each->next;
  return each == nullptr ? nullptr : &each->driver;
}

u64 countDrivers() {
  DevicesLock const lock;
  u64 count = 0;
  for (WholeDriver const* each = g_drivers; each != nullptr; each = each->next) ++count;
  return count;
}

void visitDrivers(void (*visit)(DRIVER_OBJECT* driver)) {
  DevicesLock const lock;
  for (WholeDriver* each = g_drivers; each != nullptr; each = each->next) visit(&each->driver);
}

}  // namespace ntoshost
