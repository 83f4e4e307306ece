// oxdiagcontrol.sys: the device over which programs reach the dispatchers of the platform layer.

#include "ntos/driver.h"
#include "tRequestDevice.h"
#include "vexk/debug.h"

namespace {

constexpr u32 kServedKinds[] = {IRP_MJ_CREATE, IRP_MJ_CLEANUP, IRP_MJ_CLOSE, IRP_MJ_DEVICE_CONTROL};

constinit tRequestDevice requestDevice;

void unload(DRIVER_OBJECT* /*driver*/) {
  requestDevice.close();
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  for (u32 const kind : kServedKinds) driver->MajorFunction[kind] = &tRequestDevice::dispatch;
  driver->DriverUnload = &unload;
  NTSTATUS const status = requestDevice.open(*driver);
  if (NT_SUCCESS(status)) return status;
  ssprintf("[oxdiagcontrol] no programs are served, the device cannot be made: 0x%08X\n",
           static_cast<unsigned>(status));
  return status;
}
