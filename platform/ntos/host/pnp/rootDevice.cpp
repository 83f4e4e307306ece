#include <stdio.h>
#include <string.h>

#include "io/driverTable.h"
#include "ntos/pool.h"
#include "ntoshost/violation.h"
#include "pnp/lifecycle.h"

// Physical devices of the executive's own, under a driver that exists as long as one of them does.

namespace ntoshost {
namespace {

constexpr u32 kTag = ntosPoolTag("Root");
constexpr size_t kMostCharacters = 63;

constinit DRIVER_OBJECT* g_driver = nullptr;
constinit u64 g_rootDevices = 0;

struct RootExtension {
  char name[kMostCharacters + 1];
  u32 number;
};

RootExtension& extensionOf(DEVICE_OBJECT* device) {
  return *static_cast<RootExtension*>(device->DeviceExtension);
}

NTSTATUS finish(IRP* request, NTSTATUS status, u64 information) {
  request->IoStatus.Status = status;
  request->IoStatus.Information = information;
  IoCompleteRequest(request, IO_NO_INCREMENT);
  return status;
}

NTSTATUS finish(IRP* request, NTSTATUS status) {
  return finish(request, status, request->IoStatus.Information);
}

// Completes with a copy of the text, followed by an empty one.
NTSTATUS finishWithText(IRP* request, char const* text) {
  size_t const length = strlen(text);
  size_t const size = (length + 2) * sizeof(wchar_t);
  wchar_t* const copy = static_cast<wchar_t*>(ExAllocatePoolWithTag(PagedPool, size, kTag));
  if (copy == nullptr) return finish(request, STATUS_INSUFFICIENT_RESOURCES);
  for (size_t i = 0; i < length; ++i) copy[i] = static_cast<wchar_t>(text[i]);
  copy[length] = copy[length + 1] = 0;
  return finish(request, STATUS_SUCCESS, reinterpret_cast<u64>(copy));
}

NTSTATUS answerId(DEVICE_OBJECT* device, IRP* request) {
  RootExtension const& extension = extensionOf(device);
  char text[kMostCharacters + 16];
  switch (IoGetCurrentIrpStackLocation(request)->Parameters.QueryId.IdType) {
    case BusQueryDeviceID:
    case BusQueryHardwareIDs:
      snprintf(text, sizeof(text), "ROOT\\%s", extension.name);
      return finishWithText(request, text);
    case BusQueryInstanceID:
      snprintf(text, sizeof(text), "%04u", extension.number);
      return finishWithText(request, text);
    default:
      return finish(request, request->IoStatus.Status);
  }
}

NTSTATUS answerCapabilities(IRP* request) {
  DEVICE_CAPABILITIES& capabilities =
      *IoGetCurrentIrpStackLocation(request)->Parameters.DeviceCapabilities.Capabilities;
  if (capabilities.Version != 1 || capabilities.Size < sizeof(DEVICE_CAPABILITIES)) {
    return finish(request, STATUS_UNSUCCESSFUL);
  }
  capabilities.Flags |=
      kDeviceCapabilityUniqueID | kDeviceCapabilitySilentInstall | kDeviceCapabilityRawDeviceOK;
  capabilities.DeviceState[PowerSystemWorking] = PowerDeviceD0;
  for (u32 i = PowerSystemSleeping1; i < kPowerSystemMaximum; ++i) {
    capabilities.DeviceState[i] = PowerDeviceD3;
  }
  return finish(request, STATUS_SUCCESS);
}

NTSTATUS dispatchPnp(DEVICE_OBJECT* device, IRP* request) {
  switch (IoGetCurrentIrpStackLocation(request)->MinorFunction) {
    case IRP_MN_QUERY_ID:
      return answerId(device, request);
    case IRP_MN_QUERY_CAPABILITIES:
      return answerCapabilities(request);
    case IRP_MN_START_DEVICE:
    case IRP_MN_QUERY_REMOVE_DEVICE:
    case IRP_MN_REMOVE_DEVICE:
    case IRP_MN_CANCEL_REMOVE_DEVICE:
    case IRP_MN_STOP_DEVICE:
    case IRP_MN_QUERY_STOP_DEVICE:
    case IRP_MN_CANCEL_STOP_DEVICE:
    case IRP_MN_SURPRISE_REMOVAL:
      return finish(request, STATUS_SUCCESS);
    default:
      return finish(request, request->IoStatus.Status);
  }
}

NTSTATUS dispatchPower(DEVICE_OBJECT*, IRP* request) {
  PoStartNextPowerIrp(request);
  u8 const minor = IoGetCurrentIrpStackLocation(request)->MinorFunction;
  bool const isServed = minor == IRP_MN_SET_POWER || minor == IRP_MN_QUERY_POWER;
  return finish(request, isServed ? STATUS_SUCCESS : request->IoStatus.Status);
}

NTSTATUS dispatchSystemControl(DEVICE_OBJECT*, IRP* request) {
  return finish(request, request->IoStatus.Status);
}

bool makeRootDriver() {
  if (g_driver != nullptr) return true;
  g_driver = makeDriver("PnpManager");
  if (g_driver == nullptr) return false;
  g_driver->MajorFunction[IRP_MJ_PNP] = dispatchPnp;
  g_driver->MajorFunction[IRP_MJ_POWER] = dispatchPower;
  g_driver->MajorFunction[IRP_MJ_SYSTEM_CONTROL] = dispatchSystemControl;
  return true;
}

void dropUnusedDriver() {
  if (g_rootDevices != 0 || g_driver == nullptr) return;
  destroyDriver(g_driver, "removeRootDevice");
  g_driver = nullptr;
}

bool isTaken(char const* name, u32 number) {
  for (Node const* root = firstChildOf(nullptr); root != nullptr; root = root->nextSibling) {
    RootExtension const& extension = extensionOf(root->known.physical);
    if (extension.number == number && strcmp(extension.name, name) == 0) return true;
  }
  return false;
}

void requireName(char const* name) {
  size_t const length = strlen(name);
  if (length > 0 && length <= kMostCharacters) return;
  violation("A root device was given a name of %zu characters; it may have 1 to %zu.", length,
            kMostCharacters);
}

NTSTATUS makeDevice(char const* name, DEVICE_OBJECT** device) {
  NTSTATUS const status =
      makeRootDriver()
          ? IoCreateDevice(g_driver, sizeof(RootExtension), nullptr, FILE_DEVICE_UNKNOWN,
                           FILE_AUTOGENERATED_DEVICE_NAME, 0, device)
          : STATUS_INSUFFICIENT_RESOURCES;
  if (!NT_SUCCESS(status)) {
    dropUnusedDriver();
    return status;
  }
  ++g_rootDevices;
  RootExtension& extension = extensionOf(*device);
  memcpy(extension.name, name, strlen(name) + 1);
  while (isTaken(name, extension.number)) ++extension.number;
  (*device)->Flags |= DO_BUS_ENUMERATED_DEVICE;
  (*device)->Flags &= ~DO_DEVICE_INITIALIZING;
  return status;
}

// Puts the device into the tree and runs the driver's AddDevice.
NTSTATUS install(DRIVER_OBJECT* driver, DEVICE_OBJECT* device) {
  ObfReferenceObject(device);
  Node* const node = addNode(nullptr, device);
  if (node == nullptr) {
    ObfDereferenceObject(device);
    return STATUS_INSUFFICIENT_RESOURCES;
  }
  node->assigned = driver;
  NTSTATUS status = identify(*node);
  if (NT_SUCCESS(status)) status = addFunctionDevice(*node, driver);
  if (!NT_SUCCESS(status)) dropNodes(node);
  return status;
}

}  // namespace

void forgetRootDriver(DRIVER_OBJECT* driver) {
  TreeOperation const operation("unloadDriver");
  for (Node* root = firstChildOf(nullptr); root != nullptr; root = root->nextSibling) {
    if (root->assigned == driver) root->assigned = nullptr;
  }
}

void deleteRootDevice(DEVICE_OBJECT* device) {
  IoDeleteDevice(device);
  --g_rootDevices;
  dropUnusedDriver();
}

NTSTATUS addRootDevice(DRIVER_OBJECT* driver, char const* name, DEVICE_OBJECT** result) {
  TreeOperation const operation("addRootDevice");
  requireName(name);
  *result = nullptr;
  DEVICE_OBJECT* device = nullptr;
  NTSTATUS status = makeDevice(name, &device);
  if (!NT_SUCCESS(status)) return status;
  status = install(driver, device);
  if (NT_SUCCESS(status)) {
    *result = device;
  } else {
    deleteRootDevice(device);
  }
  return status;
}

}  // namespace ntoshost
