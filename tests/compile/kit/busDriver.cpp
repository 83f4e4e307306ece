// A bus driver with the kit's headers, which uses every function whose exported name has a type of
// the kernel in it. It is linked against the modules: their names are those of the kit's types.

#include <ntddk.h>

#include "oxdiagk/module.h"
#include "oxdiagk/package.h"
#include "vexk/dispatch.h"
#include "vexk/functionDevice.h"
#include "vexk/iChildBus.h"
#include "vexk/iChildHandler.h"
#include "vexk/memory.h"

namespace {

class tLamp final : public iChildHandler {
 public:
  VEX_MODULE_MEMORY

  void handleDeviceControl(ULONG, void*, ULONG, void*, ULONG, ULONGLONG*, LONG* status) override {
    *status = 0;
  }
};

class tLamps final : public iDeviceComponent {
 public:
  VEX_MODULE_MEMORY

  void start(iChildBus* children, LONG& status) override {
    if (children != nullptr) children->createChild({}, status);
  }
  void stop(bool) override {}
  void handleDeviceControl(ULONG, void*, ULONG, void*, ULONG, ULONGLONG*, LONG*) override {}
  void release() override { delete this; }

  tLamp lamp;
};

constexpr GUID kLampBus = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};

NTSTATUS addDevice(PDRIVER_OBJECT driver, PDEVICE_OBJECT physicalDevice) {
  tLamps* const lamps = new tLamps;
  if (lamps == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  tFunctionDeviceDescription const description = {driver, physicalDevice, FILE_DEVICE_BUS_EXTENDER,
                                                  tModuleGUID::of(kLampBus), 0};
  NTSTATUS const status = vexAddFunctionDevice(description, *lamps);
  if (!NT_SUCCESS(status)) lamps->release();
  return status;
}

void unload(PDRIVER_OBJECT) {
  pkgSetWDMWrapperLoadStateAndGetGUID(0);
  oxdiagkUnload();
}

}  // namespace

extern "C" NTSTATUS DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath) {
  oxdiagkInitialize(registryPath);
  pkgSetWDMWrapperLoadStateAndGetGUID(1);
  for (auto& dispatch : driver->MajorFunction) dispatch = &pkgWDMWrapperHandleIrp;
  driver->MajorFunction[IRP_MJ_READ] = &vexDispatch;
  driver->MajorFunction[IRP_MJ_WRITE] = &vexDispatchPower;
  driver->MajorFunction[IRP_MJ_SYSTEM_CONTROL] = &vexDispatchSystemControl;
  driver->MajorFunction[IRP_MJ_SHUTDOWN] = &vexDispatchPnp;
  driver->DriverExtension->AddDevice = &addDevice;
  driver->DriverUnload = &unload;
  return STATUS_SUCCESS;
}
