#include "package/windows/wdm/childCapabilities.h"

#include "ntos/wait.h"
#include "package/windows/wdm/tParentDevice.h"

namespace nOXDIAG100 {
namespace {

constexpr u16 kVersion = 1;
constexpr u32 kKeptFlags = 0xFFFC0000;
constexpr u32 kUnknownAddress = 0xFFFFFFFF;

bool isUsable(DEVICE_CAPABILITIES const* capabilities) {
  return capabilities != nullptr && capabilities->Version == kVersion &&
         capabilities->Size >= sizeof(DEVICE_CAPABILITIES);
}

DEVICE_CAPABILITIES unknownCapabilities() {
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = kVersion;
  capabilities.Address = kUnknownAddress;
  capabilities.UINumber = kUnknownAddress;
  return capabilities;
}

// Sends a query to the device itself, which is the top of its stack.
NTSTATUS queryDevice(DEVICE_OBJECT& top, DEVICE_CAPABILITIES& capabilities) {
  KEVENT done;
  KeInitializeEvent(&done, NotificationEvent, 0);
  IO_STATUS_BLOCK result = {};
  IRP* const query =
      IoBuildSynchronousFsdRequest(IRP_MJ_PNP, &top, nullptr, 0, nullptr, &done, &result);
  if (query == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  query->IoStatus.Status = STATUS_NOT_SUPPORTED;
  IO_STACK_LOCATION* const location = IoGetNextIrpStackLocation(query);
  location->MinorFunction = IRP_MN_QUERY_CAPABILITIES;
  location->Parameters.DeviceCapabilities.Capabilities = &capabilities;
  NTSTATUS const status = IoCallDriver(&top, query);
  if (status != STATUS_PENDING) return status;
  KeWaitForSingleObject(&done, Executive, KernelMode, 0, nullptr);
  return result.Status;
}

NTSTATUS queryBus(DEVICE_OBJECT& bus, DEVICE_CAPABILITIES& capabilities) {
  DEVICE_OBJECT* const top = IoGetAttachedDeviceReference(&bus);
  NTSTATUS const status = queryDevice(*top, capabilities);
  ObfDereferenceObject(top);
  return status;
}

u32 flagsOf(tChildDevice const& child, u32 before) {
  u32 const unique = child.hasUniqueId ? kDeviceCapabilityUniqueID : 0;
  return (before & kKeptFlags) | kDeviceCapabilityRemovable | kDeviceCapabilitySurpriseRemovalOK |
         unique;
}

void fill(DEVICE_CAPABILITIES& capabilities, tChildDevice const& child,
          DEVICE_CAPABILITIES const& bus) {
  capabilities.Flags = flagsOf(child, capabilities.Flags);
  capabilities.Address = child.slot;
  capabilities.UINumber = child.slot;
  __builtin_memcpy(capabilities.DeviceState, bus.DeviceState, sizeof(bus.DeviceState));
  capabilities.SystemWake = PowerSystemUnspecified;
  capabilities.DeviceWake = PowerDeviceUnspecified;
  capabilities.D1Latency = 0;
  capabilities.D2Latency = 0;
  capabilities.D3Latency = 0;
}

}  // namespace

// The bus stays while the child's mutex is held: it waits for that before it goes.
NTSTATUS tellCapabilities(tChildRequest& request) {
  DEVICE_CAPABILITIES* const wanted = request.location.Parameters.DeviceCapabilities.Capabilities;
  if (!isUsable(wanted)) return STATUS_UNSUCCESSFUL;
  if (request.child.parent == nullptr) return STATUS_NO_SUCH_DEVICE;
  DEVICE_CAPABILITIES bus = unknownCapabilities();
  NTSTATUS const status = queryBus(request.child.parent->getDevice(), bus);
  if (NT_SUCCESS(status)) fill(*wanted, request.child, bus);
  return status;
}

}  // namespace nOXDIAG100
