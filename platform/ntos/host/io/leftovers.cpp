#include <stdarg.h>
#include <stdio.h>

#include "io/driverTable.h"
#include "io/names.h"
#include "io/openFiles.h"
#include "io/requestTable.h"
#include "ntoshost/devices.h"
#include "ntoshost/violation.h"
#include "standardError.h"

// What is left of drivers, devices and requests.

namespace ntoshost {
namespace {

__attribute__((format(printf, 1, 2))) void printLine(char const* format, ...) {
  char line[400];
  va_list arguments;
  va_start(arguments, format);
  int const length = vsnprintf(line, sizeof(line), format, arguments);
  va_end(arguments);
  writeStandardError(line, static_cast<size_t>(length));
}

void printDriver(DRIVER_OBJECT* driver) {
  printLine("ntos: driver %s at %p\n", DriverText(driver).text, static_cast<void*>(driver));
}

void printDevice(DEVICE_OBJECT* device) {
  DEVOBJ_EXTENSION const& record = recordOf(device);
  printLine("ntos: device of %s at %p: %lld references, %d handles%s\n",
            DriverText(device->DriverObject).text, static_cast<void*>(device),
            static_cast<long long>(record.references - (record.isDeleted ? 0 : 1)),
            device->ReferenceCount, record.isDeleted ? ", deleted" : "");
}

void printDevices() {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = g_devices.oldest; each != nullptr; each = recordOf(each).newer) {
    printDevice(each);
  }
}

void printRequest(RequestRecord const& record) {
  void* const address = record.request;
  if (record.device == nullptr) return printLine("ntos: request at %p, never sent\n", address);
  printLine("ntos: %s at %p, sent last to the device at %p\n",
            RequestText(record.major, record.minor).text, address,
            static_cast<void*>(record.device));
}

void printFile(FILE_OBJECT const& file) {
  printLine("ntos: file at %p of the device at %p\n", static_cast<void const*>(&file),
            static_cast<void*>(file.device));
}

void printLink(char const* text) {
  printLine("ntos: symbolic link %s\n", text);
}

u64 countLinksLocked() {
  DevicesLock const lock;
  return countLinks();
}

u64 countDevicesLocked() {
  DevicesLock const lock;
  return g_devices.count;
}

}  // namespace

DeviceCounts countDevices() {
  return {countDevicesLocked(), countRequests(), countFiles(), countLinksLocked(), countDrivers()};
}

void reportDevices() {
  visitDrivers(printDriver);
  printDevices();
  visitRequests(printRequest);
  visitFiles(printFile);
  DevicesLock const lock;
  visitLinks(printLink);
}

void requireNoDevices(char const* who) {
  DeviceCounts const counts = countDevices();
  if ((counts.devices | counts.requests | counts.files | counts.links | counts.drivers) == 0)
    return;
  reportDevices();
  violation(
      "%s left %llu devices, %llu requests, %llu open files, %llu symbolic links and %llu drivers "
      "behind.",
      who, counts.devices, counts.requests, counts.files, counts.links, counts.drivers);
}

}  // namespace ntoshost
