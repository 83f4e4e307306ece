#include "wdm/tLowerFilter.h"

#include "ntos/io.h"
#include "ntos/power.h"
#include "ntoshost/devices.h"

namespace {

struct tFilterExtension {
  tLowerFilter* filter;
  DEVICE_OBJECT* lower;
};

tFilterExtension& extensionOf(DEVICE_OBJECT const& device) {
  return *static_cast<tFilterExtension*>(device.DeviceExtension);
}

NTSTATUS pass(DEVICE_OBJECT* lower, IRP& irp, bool isPower) {
  if (isPower) PoStartNextPowerIrp(&irp);
  IoSkipCurrentIrpStackLocation(&irp);
  return isPower ? PoCallDriver(lower, &irp) : IoCallDriver(lower, &irp);
}

NTSTATUS fail(IRP& irp) {
  irp.IoStatus.Status = tLowerFilter::kFailure;
  IoCompleteRequest(&irp, IO_NO_INCREMENT);
  return tLowerFilter::kFailure;
}

// The device above is attached until the request has come back to it, so this one is deleted later.
NTSTATUS remove(DEVICE_OBJECT* lower, IRP& irp) {
  NTSTATUS const status = pass(lower, irp, false);
  IoDetachDevice(lower);
  return status;
}

}  // namespace

tLowerFilter::tLowerFilter(char const* driverName) {
  ntoshost::loadDriver(driverName, &enter, &driver);
}

tLowerFilter::~tLowerFilter() {
  if (driver->DeviceObject != nullptr) IoDeleteDevice(driver->DeviceObject);
  ntoshost::unloadDriver(driver);
}

NTSTATUS tLowerFilter::enter(DRIVER_OBJECT* entered, UNICODE_STRING* /*registryPath*/) {
  entered->DriverUnload = [](DRIVER_OBJECT*) {};
  for (DRIVER_DISPATCH*& each : entered->MajorFunction) each = &dispatch;
  return STATUS_SUCCESS;
}

NTSTATUS tLowerFilter::attachTo(DEVICE_OBJECT* physicalDevice) {
  DEVICE_OBJECT* device = nullptr;
  NTSTATUS const status =
      IoCreateDevice(driver, sizeof(tFilterExtension), nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device);
  if (!NT_SUCCESS(status)) return status;
  extensionOf(*device) = {this, IoAttachDeviceToDeviceStack(device, physicalDevice)};
  device->Flags &= ~DO_DEVICE_INITIALIZING;
  return STATUS_SUCCESS;
}

void tLowerFilter::failNext(u8 minor) {
  __atomic_or_fetch(&failing, u32{1} << minor, __ATOMIC_SEQ_CST);
}

bool tLowerFilter::takeFailure(u8 minor) {
  u32 const bit = minor < 32 ? u32{1} << minor : 0;
  return (__atomic_fetch_and(&failing, ~bit, __ATOMIC_SEQ_CST) & bit) != 0;
}

NTSTATUS tLowerFilter::dispatch(DEVICE_OBJECT* device, IRP* irp) {
  IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(irp);
  tFilterExtension const& extension = extensionOf(*device);
  bool const isPnp = location.MajorFunction == IRP_MJ_PNP;
  if (isPnp && extension.filter->takeFailure(location.MinorFunction)) return fail(*irp);
  if (isPnp && location.MinorFunction == IRP_MN_REMOVE_DEVICE) return remove(extension.lower, *irp);
  return pass(extension.lower, *irp, location.MajorFunction == IRP_MJ_POWER);
}
