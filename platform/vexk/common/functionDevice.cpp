#include "vexk/functionDevice.h"

#include "common/tFunctionDevice.h"
#include "ntos/io.h"

NTSTATUS vexAddFunctionDevice(tFunctionDeviceDescription const& description,
                              iDeviceComponent& component) {
  DEVICE_OBJECT* device = nullptr;
  NTSTATUS const status =
      IoCreateDevice(description.driver, tFunctionDevice::kExtensionSize, nullptr,
                     description.deviceType, FILE_DEVICE_SECURE_OPEN, 0, &device);
  if (!NT_SUCCESS(status)) return status;
  if (tFunctionDevice::construct(*device, description, component).attach()) return STATUS_SUCCESS;
  IoDeleteDevice(device);
  return STATUS_NO_SUCH_DEVICE;
}
