#include <stdio.h>
#include <string.h>

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

constexpr size_t kLineCapacity = 400;

void writeLine(char const* line) {
  writeStandardError(line, strlen(line));
}

void printDriver(DRIVER_OBJECT* driver) {
  char line[kLineCapacity];
  snprintf(line, sizeof(line), "ntos: driver %s at %p\n", DriverText(driver).text,
           static_cast<void*>(driver));
  writeLine(line);
}

void printDevice(DEVICE_OBJECT* device) {
  DEVOBJ_EXTENSION const& record = recordOf(device);
  char line[kLineCapacity];
  snprintf(line, sizeof(line), "ntos: device of %s at %p: %lld references, %d handles%s\n",
           DriverText(device->DriverObject).text, static_cast<void*>(device),
           static_cast<long long>(record.references - (record.isDeleted ? 0 : 1)),
           device->ReferenceCount, record.isDeleted ? ", deleted" : "");
  writeLine(line);
}

void printDevices() {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = g_devices.oldest; each != nullptr; each = recordOf(each).newer) {
    printDevice(each);
  }
}

void printRequest(RequestRecord const& record) {
  char line[kLineCapacity];
  void* const address = record.request;
  if (record.device == nullptr) {
    snprintf(line, sizeof(line), "ntos: request at %p, never sent\n", address);
  } else {
    snprintf(line, sizeof(line), "ntos: %s at %p, sent last to the device at %p\n",
             RequestText(record.major, record.minor).text, address,
             static_cast<void*>(record.device));
  }
  writeLine(line);
}

void printFile(FILE_OBJECT const& file) {
  char line[kLineCapacity];
  snprintf(line, sizeof(line), "ntos: file at %p of the device at %p\n",
           static_cast<void const*>(&file), static_cast<void*>(file.device));
  writeLine(line);
}

void printLink(char const* text) {
  char line[kLineCapacity];
  snprintf(line, sizeof(line), "ntos: symbolic link %s\n", text);
  writeLine(line);
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
