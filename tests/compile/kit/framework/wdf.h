#pragma once

// The few declarations of the kit's driver framework that the sample of docs/windows.md needs, as
// its public documentation gives them. What is left out of a structure is not used here, so this
// is good for compiling alone.

extern "C" {

using WDFDRIVER = struct WDFDRIVER__*;
using WDFDEVICE = struct WDFDEVICE__*;
using WDFQUEUE = struct WDFQUEUE__*;
using WDFREQUEST = struct WDFREQUEST__*;
using PWDFDEVICE_INIT = struct WDFDEVICE_INIT*;
using PWDF_OBJECT_ATTRIBUTES = struct _WDF_OBJECT_ATTRIBUTES*;

#define WDF_NO_OBJECT_ATTRIBUTES nullptr
#define WDF_NO_HANDLE nullptr

using EVT_WDF_DRIVER_DEVICE_ADD = NTSTATUS(WDFDRIVER driver, PWDFDEVICE_INIT init);
using EVT_WDF_DRIVER_UNLOAD = void(WDFDRIVER driver);
using EVT_WDF_IO_QUEUE_IO_DEVICE_CONTROL = void(WDFQUEUE queue, WDFREQUEST request,
                                                size_t outputLength, size_t inputLength,
                                                ULONG code);

struct WDF_DRIVER_CONFIG {
  ULONG Size;
  EVT_WDF_DRIVER_DEVICE_ADD* EvtDriverDeviceAdd;
  EVT_WDF_DRIVER_UNLOAD* EvtDriverUnload;
  ULONG DriverInitFlags;
  ULONG DriverPoolTag;
};

inline void WDF_DRIVER_CONFIG_INIT(WDF_DRIVER_CONFIG* config, EVT_WDF_DRIVER_DEVICE_ADD* add) {
  *config = {sizeof(WDF_DRIVER_CONFIG), add, nullptr, 0, 0};
}

enum WDF_IO_QUEUE_DISPATCH_TYPE {
  WdfIoQueueDispatchSequential = 1,
  WdfIoQueueDispatchParallel = 2,
  WdfIoQueueDispatchManual = 3,
};

struct WDF_IO_QUEUE_CONFIG {
  ULONG Size;
  WDF_IO_QUEUE_DISPATCH_TYPE DispatchType;
  BOOLEAN DefaultQueue;
  EVT_WDF_IO_QUEUE_IO_DEVICE_CONTROL* EvtIoDeviceControl;
};

inline void WDF_IO_QUEUE_CONFIG_INIT_DEFAULT_QUEUE(WDF_IO_QUEUE_CONFIG* config,
                                                   WDF_IO_QUEUE_DISPATCH_TYPE type) {
  *config = {sizeof(WDF_IO_QUEUE_CONFIG), type, TRUE, nullptr};
}

NTSTATUS WdfDriverCreate(PDRIVER_OBJECT object, PCUNICODE_STRING registryPath,
                         PWDF_OBJECT_ATTRIBUTES attributes, WDF_DRIVER_CONFIG* config,
                         WDFDRIVER* driver);
NTSTATUS WdfDeviceCreate(PWDFDEVICE_INIT* init, PWDF_OBJECT_ATTRIBUTES attributes,
                         WDFDEVICE* device);
NTSTATUS WdfIoQueueCreate(WDFDEVICE device, WDF_IO_QUEUE_CONFIG* config,
                          PWDF_OBJECT_ATTRIBUTES attributes, WDFQUEUE* queue);
NTSTATUS WdfRequestRetrieveOutputBuffer(WDFREQUEST request, size_t minimumLength, PVOID* buffer,
                                        size_t* length);
void WdfRequestComplete(WDFREQUEST request, NTSTATUS status);
void WdfRequestCompleteWithInformation(WDFREQUEST request, NTSTATUS status, ULONG_PTR information);
}
