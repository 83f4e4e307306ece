#pragma once

#include "ntos/driver.h"
#include "ntos/file.h"
#include "ntos/pnp.h"

// Requests to devices. A request has one stack location for each device on its way, the lowest
// first in memory; the current one is what a driver's dispatch looks at.

struct FILE_OBJECT;
struct IO_STACK_LOCATION;

// Runs when the drivers below have completed a request, at any IRQL up to DISPATCH_LEVEL. The
// request's way up goes on with STATUS_SUCCESS and stops with STATUS_MORE_PROCESSING_REQUIRED.
using IO_COMPLETION_ROUTINE = NTSTATUS(DEVICE_OBJECT* device, IRP* request, void* context);
using DRIVER_CANCEL = void(DEVICE_OBJECT* device, IRP* request);

struct _IRP {
  i16 Type;
  u16 Size;
  void* MdlAddress;
  u32 Flags;
  union {
    IRP* MasterIrp;
    i32 IrpCount;
    void* SystemBuffer;  // of METHOD_BUFFERED: input and output
  } AssociatedIrp;
  LIST_ENTRY ThreadListEntry;
  IO_STATUS_BLOCK IoStatus;
  KPROCESSOR_MODE RequestorMode;  // whose addresses the request has
  BOOLEAN PendingReturned;
  i8 StackCount;
  i8 CurrentLocation;  // StackCount + 1 before the first driver has it
  BOOLEAN Cancel;
  KIRQL CancelIrql;
  i8 ApcEnvironment;
  u8 AllocationFlags;
  IO_STATUS_BLOCK* UserIosb;
  KEVENT* UserEvent;
  u64 Overlay[2];
  DRIVER_CANCEL* CancelRoutine;
  void* UserBuffer;  // of METHOD_NEITHER: output
  union {
    struct {
      void* DriverContext[4];
      void* Thread;
      char* AuxiliaryBuffer;
      LIST_ENTRY ListEntry;
      IO_STACK_LOCATION* CurrentStackLocation;
      FILE_OBJECT* OriginalFileObject;
    } Overlay;
    u64 Apc[11];
  } Tail;
};
static_assert(sizeof(IRP) == 208);
static_assert(offsetof(IRP, AssociatedIrp) == 24 && offsetof(IRP, IoStatus) == 48);
static_assert(offsetof(IRP, RequestorMode) == 64 && offsetof(IRP, UserIosb) == 72);
static_assert(offsetof(IRP, CancelRoutine) == 104 && offsetof(IRP, UserBuffer) == 112);
static_assert(offsetof(IRP, Tail) == 120);
static_assert(offsetof(IRP, Tail.Overlay.CurrentStackLocation) == 184);

// Bits of IO_STACK_LOCATION::Control.
constexpr u8 SL_PENDING_RETURNED = 0x01;
constexpr u8 SL_INVOKE_ON_CANCEL = 0x20;
constexpr u8 SL_INVOKE_ON_SUCCESS = 0x40;
constexpr u8 SL_INVOKE_ON_ERROR = 0x80;

struct IO_STACK_LOCATION {
  u8 MajorFunction;  // IRP_MJ_
  u8 MinorFunction;  // IRP_MN_
  u8 Flags;
  u8 Control;  // SL_
  union {
    struct {
      void* SecurityContext;
      u32 Options;
      alignas(8) u16 FileAttributes;
      u16 ShareAccess;
      alignas(8) u32 EaLength;
    } Create;
    struct {
      u32 OutputBufferLength;
      alignas(8) u32 InputBufferLength;
      alignas(8) u32 IoControlCode;
      void* Type3InputBuffer;  // of METHOD_NEITHER: input
    } DeviceIoControl;
    struct {
      DEVICE_RELATION_TYPE Type;
    } QueryDeviceRelations;
    struct {
      DEVICE_CAPABILITIES* Capabilities;
    } DeviceCapabilities;
    struct {
      BUS_QUERY_ID_TYPE IdType;
    } QueryId;
    struct {
      DEVICE_TEXT_TYPE DeviceTextType;
      alignas(8) u32 LocaleId;
    } QueryDeviceText;
    struct {
      BOOLEAN InPath;
      BOOLEAN Reserved[3];
      alignas(8) i32 Type;
    } UsageNotification;
    struct {
      u32 SystemContext;
      alignas(8) POWER_STATE_TYPE Type;
      alignas(8) POWER_STATE State;
      alignas(8) i32 ShutdownType;
    } Power;
    struct {
      void* AllocatedResources;
      void* AllocatedResourcesTranslated;
    } StartDevice;
    struct {
      void* Argument1;
      void* Argument2;
      void* Argument3;
      void* Argument4;
    } Others;
  } Parameters;
  DEVICE_OBJECT* DeviceObject;
  FILE_OBJECT* FileObject;
  IO_COMPLETION_ROUTINE* CompletionRoutine;
  void* Context;
};
static_assert(sizeof(IO_STACK_LOCATION) == 72);
static_assert(offsetof(IO_STACK_LOCATION, Parameters) == 8);
static_assert(offsetof(IO_STACK_LOCATION, Parameters.DeviceIoControl.IoControlCode) == 24);
static_assert(offsetof(IO_STACK_LOCATION, Parameters.DeviceIoControl.Type3InputBuffer) == 32);
static_assert(offsetof(IO_STACK_LOCATION, Parameters.Power.Type) == 16);
static_assert(offsetof(IO_STACK_LOCATION, Parameters.Power.State) == 24);
static_assert(offsetof(IO_STACK_LOCATION, DeviceObject) == 40);
static_assert(offsetof(IO_STACK_LOCATION, CompletionRoutine) == 56);

// How a device control code says that its buffers come, in its two low bits.
constexpr u32 METHOD_BUFFERED = 0;  // copied by the kernel, in AssociatedIrp.SystemBuffer
constexpr u32 METHOD_NEITHER = 3;   // as the caller gave them
constexpr u32 FILE_ANY_ACCESS = 0;

// `deviceType` and `function` from 0x8000 and 0x800 on are free for everyone.
constexpr u32 ntosControlCode(u32 deviceType, u32 function, u32 method, u32 access) {
  return deviceType << 16 | access << 14 | function << 2 | method;
}

constexpr i8 IO_NO_INCREMENT = 0;  // completing gives the waiting thread no boost

extern "C" {

// The kernel's own completion and passing on, under the names that fast calls have; drivers write
// IoCompleteRequest and IoCallDriver. IRQL <= DISPATCH_LEVEL. A completed request is not touched
// any more.
NTOS_IMPORT void IofCompleteRequest(IRP* request, i8 priorityBoost);
NTOS_IMPORT NTSTATUS IofCallDriver(DEVICE_OBJECT* device, IRP* request);

// Whether the request comes from a 32-bit program on a 64-bit system. Any IRQL.
NTOS_IMPORT BOOLEAN IoIs32bitProcess(IRP* request);

// A request of one's own with `stackSize` locations, or null; its owner frees it when it has come
// back to a completion routine of his that stopped it. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT IRP* IoAllocateIrp(i8 stackSize, BOOLEAN chargeQuota);
NTOS_IMPORT void IoFreeIrp(IRP* request);

// A request that `event` is set and `result` written for, and that the kernel frees, when it is
// completed; null when memory is short. An error that IoCallDriver returns at once is told by it
// alone: `event` and `result` stay as they are. The first location is filled for the device's
// driver; what is not said here is zero and the sender's to set before he passes it on.
// PASSIVE_LEVEL.
NTOS_IMPORT IRP* IoBuildSynchronousFsdRequest(u32 majorFunction, DEVICE_OBJECT* device,
                                              void* buffer, u32 length, LARGE_INTEGER* offset,
                                              KEVENT* event, IO_STATUS_BLOCK* result);
NTOS_IMPORT IRP* IoBuildDeviceIoControlRequest(u32 controlCode, DEVICE_OBJECT* device, void* input,
                                               u32 inputLength, void* output, u32 outputLength,
                                               BOOLEAN isInternal, KEVENT* event,
                                               IO_STATUS_BLOCK* result);
}

inline void IoCompleteRequest(IRP* request, i8 priorityBoost) {
  IofCompleteRequest(request, priorityBoost);
}
inline NTSTATUS IoCallDriver(DEVICE_OBJECT* device, IRP* request) {
  return IofCallDriver(device, request);
}

// The location of the driver that has the request now, and of the one it goes to next.
inline IO_STACK_LOCATION* IoGetCurrentIrpStackLocation(IRP* request) {
  return request->Tail.Overlay.CurrentStackLocation;
}
inline IO_STACK_LOCATION* IoGetNextIrpStackLocation(IRP* request) {
  return request->Tail.Overlay.CurrentStackLocation - 1;
}

// The next driver gets the location of this one, which so leaves no trace in the request.
inline void IoSkipCurrentIrpStackLocation(IRP* request) {
  ++request->CurrentLocation;
  ++request->Tail.Overlay.CurrentStackLocation;
}

// The next driver gets a copy, and this one may set a completion routine.
inline void IoCopyCurrentIrpStackLocationToNext(IRP* request) {
  IO_STACK_LOCATION* const next = IoGetNextIrpStackLocation(request);
  *next = *IoGetCurrentIrpStackLocation(request);
  next->CompletionRoutine = nullptr;
  next->Context = nullptr;
  next->Control = 0;
}

inline void IoSetCompletionRoutine(IRP* request, IO_COMPLETION_ROUTINE* routine, void* context,
                                   bool onSuccess, bool onError, bool onCancel) {
  IO_STACK_LOCATION* const next = IoGetNextIrpStackLocation(request);
  next->CompletionRoutine = routine;
  next->Context = context;
  next->Control =
      static_cast<u8>((onSuccess ? SL_INVOKE_ON_SUCCESS : 0) | (onError ? SL_INVOKE_ON_ERROR : 0) |
                      (onCancel ? SL_INVOKE_ON_CANCEL : 0));
}

// This driver completes the request later; its dispatch returns STATUS_PENDING.
inline void IoMarkIrpPending(IRP* request) {
  IoGetCurrentIrpStackLocation(request)->Control |= SL_PENDING_RETURNED;
}
