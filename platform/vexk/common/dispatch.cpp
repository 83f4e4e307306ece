#include "vexk/dispatch.h"

#include "common/tFunctionDevice.h"

NTSTATUS vexDispatch(DEVICE_OBJECT* device, IRP* request) {
  return tFunctionDevice::of(*device).dispatch(*request);
}

NTSTATUS vexDispatchPower(DEVICE_OBJECT* device, IRP* request) {
  return tFunctionDevice::of(*device).dispatchPower(*request);
}

NTSTATUS vexDispatchSystemControl(DEVICE_OBJECT* device, IRP* request) {
  return tFunctionDevice::of(*device).dispatchSystemControl(*request);
}

NTSTATUS vexDispatchPnp(DEVICE_OBJECT* device, IRP* request) {
  return tFunctionDevice::of(*device).dispatchPnp(*request);
}
