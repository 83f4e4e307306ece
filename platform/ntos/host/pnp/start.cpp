#include <stdlib.h>

#include "io/runDriver.h"
#include "ntoshost/violation.h"
#include "pnp/assignments.h"
#include "pnp/lifecycle.h"
#include "pnp/requests.h"
#include "pool/answers.h"

// From a device that a bus has listed to one that runs.

namespace ntoshost {
namespace {

constinit bool g_startsChildren = true;

void askTexts(DEVICE_OBJECT* device, DeviceRecord& known) {
  constexpr u32 kIds = DeviceRecord::kIdsCapacity;
  constexpr u32 kText = DeviceRecord::kIdCapacity;
  queryId(device, BusQueryHardwareIDs, known.hardwareIds, kIds);
  queryId(device, BusQueryCompatibleIDs, known.compatibleIds, kIds);
  queryId(device, BusQueryInstanceID, known.instanceId, kText);
  queryText(device, DeviceTextDescription, known.description, kText);
  queryText(device, DeviceTextLocationInformation, known.location, kText);
}

void askResources(DEVICE_OBJECT* device) {
  Request request;
  request.major = IRP_MJ_PNP;
  request.minor = IRP_MN_QUERY_RESOURCE_REQUIREMENTS;
  void* answer;
  ask(device, request, &answer);
  if (answer != nullptr) freeAnswer(answer, "resource requirements");
}

NTSTATUS askAll(DEVICE_OBJECT* device, DeviceRecord& known) {
  known.hasCapabilities = NT_SUCCESS(queryCapabilities(device, known.capabilities));
  NTSTATUS const status =
      queryId(device, BusQueryDeviceID, known.deviceId, DeviceRecord::kIdCapacity);
  askTexts(device, known);
  known.hasBusInformation = NT_SUCCESS(queryBusInformation(device, known.busInformation));
  askResources(device);
  return status;
}

NTSTATUS fail(Node& node, NTSTATUS status) {
  TreeView const view;
  node.known.failure = status;
  node.known.state = DeviceState::Failed;
  return status;
}

void requireReadyStack(Node const& node) {
  DevicesLock const lock;
  for (DEVICE_OBJECT* each = node.known.physical; each != nullptr; each = each->AttachedDevice) {
    if ((each->Flags & DO_DEVICE_INITIALIZING) == 0) continue;
    violation("AddDevice of the driver %s has left the device at %p with DO_DEVICE_INITIALIZING.",
              DriverText(each->DriverObject).text, static_cast<void*>(each));
  }
}

DRIVER_OBJECT* chooseDriver(Node const& node) {
  DRIVER_OBJECT* const driver = findAssigned(node.known.hardwareIds);
  return driver != nullptr ? driver : findAssigned(node.known.compatibleIds);
}

void setDriver(Node& node, DRIVER_OBJECT* driver) {
  TreeView const view;
  node.known.driver = driver;
}

// What has to be done before the first start, and again after a remove.
NTSTATUS prepare(Node& node) {
  if (!node.isIdentified) {
    NTSTATUS const status = identify(node);
    if (!NT_SUCCESS(status)) return status;
  }
  if (node.known.driver != nullptr) return STATUS_SUCCESS;
  return addFunctionDevice(node, node.assigned != nullptr ? node.assigned : chooseDriver(node));
}

// Whether the device may run with its bus alone.
bool needsNoDriver(DeviceRecord const& known) {
  bool const isRaw =
      known.hasCapabilities && (known.capabilities.Flags & kDeviceCapabilityRawDeviceOK) != 0;
  return isRaw || isNullDriverAssigned(known.hardwareIds) ||
         isNullDriverAssigned(known.compatibleIds);
}

// A device that does not start again takes along what is below it.
NTSTATUS giveUp(Node& node, NTSTATUS status) {
  if (node.known.state != DeviceState::Stopped) {
    sendRemove(node);
    return fail(node, status);
  }
  surpriseRemove(node);
  return node.isWaitingToGo ? status : fail(node, status);
}

}  // namespace

void setChildrenStart(bool isAutomatic) {
  __atomic_store_n(&g_startsChildren, isAutomatic, __ATOMIC_RELAXED);
}

bool startsChildren() {
  return __atomic_load_n(&g_startsChildren, __ATOMIC_RELAXED);
}

NTSTATUS identify(Node& node) {
  DeviceRecord* const known = static_cast<DeviceRecord*>(malloc(sizeof(DeviceRecord)));
  if (known == nullptr) return fail(node, STATUS_INSUFFICIENT_RESOURCES);
  *known = node.known;
  NTSTATUS const status = askAll(node.known.physical, *known);
  {
    TreeView const view;
    node.known = *known;
  }
  free(known);
  if (!NT_SUCCESS(status)) return fail(node, status);
  node.isIdentified = true;
  return status;
}

NTSTATUS addFunctionDevice(Node& node, DRIVER_OBJECT* driver) {
  if (driver == nullptr) return STATUS_SUCCESS;
  DRIVER_ADD_DEVICE* const addDevice = driver->DriverExtension->AddDevice;
  if (addDevice == nullptr) return fail(node, STATUS_INVALID_DEVICE_REQUEST);
  NTSTATUS const status = runDriver(driver, [&] { return addDevice(driver, node.known.physical); });
  if (!NT_SUCCESS(status)) return fail(node, status);
  requireReadyStack(node);
  setDriver(node, driver);
  return status;
}

NTSTATUS start(Node& node) {
  NTSTATUS status = prepare(node);
  if (!NT_SUCCESS(status)) return status;
  if (node.known.driver == nullptr && !needsNoDriver(node.known))
    return STATUS_INVALID_DEVICE_REQUEST;
  status = sendPnp(node.known.physical, IRP_MN_START_DEVICE);
  if (!NT_SUCCESS(status)) return giveUp(node, status);
  setState(node, DeviceState::Started);
  setOpenable(node, true);
  enumerate(node);
  return status;
}

NTSTATUS startDevice(DEVICE_OBJECT* device) {
  TreeOperation const operation("startDevice");
  Node* const node = findNode(device);
  if (node == nullptr) return STATUS_NO_SUCH_DEVICE;
  DeviceState const state = node->known.state;
  bool const isStartable = state == DeviceState::Present || state == DeviceState::Failed ||
                           state == DeviceState::Stopped;
  return isStartable && !node->isWaitingToGo ? start(*node) : STATUS_INVALID_DEVICE_REQUEST;
}

}  // namespace ntoshost
