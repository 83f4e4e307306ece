#pragma once

#include "ntos/event.h"

struct DEVOBJ_EXTENSION;
struct IO_TIMER;
struct VPB;

using DEVICE_OBJECT = struct _DEVICE_OBJECT;
using DRIVER_OBJECT = struct _DRIVER_OBJECT;
using IRP = struct _IRP;

// The kernel's deferred procedure call, inside a device object.
struct KDPC {
  u8 Type;
  u8 Importance;
  u16 Number;
  LIST_ENTRY DpcListEntry;
  void* DeferredRoutine;
  void* DeferredContext;
  void* SystemArgument1;
  void* SystemArgument2;
  void* DpcData;
};
static_assert(sizeof(KDPC) == 64 && offsetof(KDPC, DeferredRoutine) == 24);

// The kernel's queue of packets, inside a device object.
struct KDEVICE_QUEUE {
  i16 Type;
  i16 Size;
  LIST_ENTRY DeviceListHead;
  u64 Lock;
  u64 Busy;
};
static_assert(sizeof(KDEVICE_QUEUE) == 40 && offsetof(KDEVICE_QUEUE, Lock) == 24);

// One device of a stack. Made by the kernel; a driver reads DeviceExtension, Flags, StackSize.
struct alignas(16) _DEVICE_OBJECT {
  i16 Type;
  u16 Size;
  i32 ReferenceCount;
  DRIVER_OBJECT* DriverObject;
  DEVICE_OBJECT* NextDevice;
  DEVICE_OBJECT* AttachedDevice;
  IRP* CurrentIrp;
  IO_TIMER* Timer;
  u32 Flags;
  u32 Characteristics;
  VPB* Vpb;
  void* DeviceExtension;
  u32 DeviceType;
  i8 StackSize;
  u64 Queue[9];  // a LIST_ENTRY or a wait context block
  u32 AlignmentRequirement;
  KDEVICE_QUEUE DeviceQueue;
  KDPC Dpc;
  u32 ActiveThreadCount;
  void* SecurityDescriptor;
  KEVENT DeviceLock;
  u16 SectorSize;
  u16 Spare1;
  DEVOBJ_EXTENSION* DeviceObjectExtension;
  void* Reserved;
};
static_assert(sizeof(DEVICE_OBJECT) == 336);
static_assert(offsetof(DEVICE_OBJECT, DriverObject) == 8);
static_assert(offsetof(DEVICE_OBJECT, Flags) == 48);
static_assert(offsetof(DEVICE_OBJECT, DeviceExtension) == 64);
static_assert(offsetof(DEVICE_OBJECT, StackSize) == 76);
static_assert(offsetof(DEVICE_OBJECT, Queue) == 80);
static_assert(offsetof(DEVICE_OBJECT, DeviceQueue) == 160);
static_assert(offsetof(DEVICE_OBJECT, Dpc) == 200);
static_assert(offsetof(DEVICE_OBJECT, DeviceLock) == 280);
static_assert(offsetof(DEVICE_OBJECT, DeviceObjectExtension) == 312);
