// A driver for one plug-and-play device, written against the driver kit alone. The same source is
// built into letterbox.sys with the kit and into letterbox_tests on Linux.

#include "driver.h"

#include "letterbox.h"

#define LETTERBOX_TAG 0x786F624C  // shown as Lbox

struct LETTER {
  LIST_ENTRY Link;
  ULONG Length;
  UCHAR Text[1];
};

struct BOX {
  PDEVICE_OBJECT Lower;
  IO_REMOVE_LOCK RemoveLock;
  FAST_MUTEX Lock;  // for what follows
  LIST_ENTRY Letters;
  ULONG Count;
  BOOLEAN IsStarted;
};

static BOX* BoxOf(PDEVICE_OBJECT Device) {
  return static_cast<BOX*>(Device->DeviceExtension);
}

static NTSTATUS Complete(PIRP Irp, NTSTATUS Status, ULONG_PTR Information) {
  Irp->IoStatus.Status = Status;
  Irp->IoStatus.Information = Information;
  IoCompleteRequest(Irp, IO_NO_INCREMENT);
  return Status;
}

static NTSTATUS PassDown(BOX* Box, PIRP Irp) {
  IoSkipCurrentIrpStackLocation(Irp);
  return IoCallDriver(Box->Lower, Irp);
}

// A letter is copied with a fast mutex held, that is at APC_LEVEL: it is in non-paged memory.
static NTSTATUS Post(BOX* Box, const void* Text, ULONG Length) {
  if (Length == 0 || Length > LETTERBOX_MOST_BYTES) return STATUS_INVALID_PARAMETER;
  LETTER* Letter = static_cast<LETTER*>(
      ExAllocatePoolWithTag(NonPagedPoolNx, sizeof(LETTER) + Length, LETTERBOX_TAG));
  if (Letter == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  Letter->Length = Length;
  RtlCopyMemory(Letter->Text, Text, Length);

  ExAcquireFastMutex(&Box->Lock);
  BOOLEAN IsFull = Box->Count == LETTERBOX_MOST_LETTERS;
  if (!IsFull) {
    InsertTailList(&Box->Letters, &Letter->Link);
    ++Box->Count;
  }
  ExReleaseFastMutex(&Box->Lock);
  if (!IsFull) return STATUS_SUCCESS;
  ExFreePoolWithTag(Letter, LETTERBOX_TAG);
  return STATUS_DEVICE_BUSY;
}

// The oldest letter, out of the box; nullptr with the reason in Status.
static LETTER* Take(BOX* Box, ULONG Room, NTSTATUS* Status) {
  LETTER* Letter = nullptr;
  ExAcquireFastMutex(&Box->Lock);
  if (IsListEmpty(&Box->Letters)) {
    *Status = STATUS_NO_MORE_ENTRIES;
  } else {
    Letter = CONTAINING_RECORD(Box->Letters.Flink, LETTER, Link);
    if (Letter->Length > Room) {
      *Status = STATUS_BUFFER_TOO_SMALL;
      Letter = nullptr;
    } else {
      RemoveEntryList(&Letter->Link);
      --Box->Count;
    }
  }
  ExReleaseFastMutex(&Box->Lock);
  return Letter;
}

static NTSTATUS Fetch(BOX* Box, void* Text, ULONG Room, ULONG_PTR* Information) {
  NTSTATUS Status = STATUS_SUCCESS;
  LETTER* Letter = Take(Box, Room, &Status);
  if (Letter == nullptr) return Status;
  RtlCopyMemory(Text, Letter->Text, Letter->Length);
  *Information = Letter->Length;
  ExFreePoolWithTag(Letter, LETTERBOX_TAG);
  return STATUS_SUCCESS;
}

static void BurnLetters(BOX* Box) {
  NTSTATUS Status = STATUS_SUCCESS;
  while (LETTER* Letter = Take(Box, MAXULONG, &Status)) ExFreePoolWithTag(Letter, LETTERBOX_TAG);
}

static NTSTATUS ServeControl(BOX* Box, PIRP Irp, ULONG_PTR* Information) {
  PIO_STACK_LOCATION Stack = IoGetCurrentIrpStackLocation(Irp);
  PVOID Buffer = Irp->AssociatedIrp.SystemBuffer;
  if (!Box->IsStarted) return STATUS_DEVICE_NOT_READY;
  switch (Stack->Parameters.DeviceIoControl.IoControlCode) {
    case IOCTL_LETTERBOX_POST:
      return Post(Box, Buffer, Stack->Parameters.DeviceIoControl.InputBufferLength);
    case IOCTL_LETTERBOX_FETCH:
      return Fetch(Box, Buffer, Stack->Parameters.DeviceIoControl.OutputBufferLength, Information);
    default:
      return STATUS_INVALID_DEVICE_REQUEST;
  }
}

static NTSTATUS DispatchControl(PDEVICE_OBJECT Device, PIRP Irp) {
  BOX* Box = BoxOf(Device);
  NTSTATUS Status = IoAcquireRemoveLock(&Box->RemoveLock, Irp);
  if (!NT_SUCCESS(Status)) return Complete(Irp, Status, 0);
  ULONG_PTR Information = 0;
  Status = ServeControl(Box, Irp, &Information);
  Complete(Irp, Status, Information);
  IoReleaseRemoveLock(&Box->RemoveLock, Irp);
  return Status;
}

static NTSTATUS DispatchOpen(PDEVICE_OBJECT, PIRP Irp) {
  return Complete(Irp, STATUS_SUCCESS, 0);
}

static NTSTATUS DispatchPower(PDEVICE_OBJECT Device, PIRP Irp) {
  BOX* Box = BoxOf(Device);
  PoStartNextPowerIrp(Irp);
  NTSTATUS Status = IoAcquireRemoveLock(&Box->RemoveLock, Irp);
  if (!NT_SUCCESS(Status)) return Complete(Irp, Status, 0);
  IoSkipCurrentIrpStackLocation(Irp);
  Status = PoCallDriver(Box->Lower, Irp);
  IoReleaseRemoveLock(&Box->RemoveLock, Irp);
  return Status;
}

static NTSTATUS SetEvent(PDEVICE_OBJECT, PIRP, PVOID Event) {
  KeSetEvent(static_cast<PKEVENT>(Event), IO_NO_INCREMENT, FALSE);
  return STATUS_MORE_PROCESSING_REQUIRED;
}

// The lower device starts first.
static NTSTATUS Start(BOX* Box, PIRP Irp) {
  KEVENT Done;
  KeInitializeEvent(&Done, NotificationEvent, FALSE);
  IoCopyCurrentIrpStackLocationToNext(Irp);
  IoSetCompletionRoutine(Irp, SetEvent, &Done, TRUE, TRUE, TRUE);
  NTSTATUS Status = IoCallDriver(Box->Lower, Irp);
  if (Status == STATUS_PENDING) {
    KeWaitForSingleObject(&Done, Executive, KernelMode, FALSE, nullptr);
    Status = Irp->IoStatus.Status;
  }
  if (NT_SUCCESS(Status)) Box->IsStarted = TRUE;
  return Complete(Irp, Status, Irp->IoStatus.Information);
}

// Waits for the requests in the device, and takes it apart.
static NTSTATUS Remove(PDEVICE_OBJECT Device, BOX* Box, PIRP Irp) {
  UNICODE_STRING Link;
  RtlInitUnicodeString(&Link, L"\\DosDevices\\Letterbox");
  Box->IsStarted = FALSE;
  IoReleaseRemoveLockAndWait(&Box->RemoveLock, Irp);
  BurnLetters(Box);
  IoDeleteSymbolicLink(&Link);
  Irp->IoStatus.Status = STATUS_SUCCESS;
  NTSTATUS Status = PassDown(Box, Irp);
  IoDetachDevice(Box->Lower);
  IoDeleteDevice(Device);
  return Status;
}

static NTSTATUS DispatchPnp(PDEVICE_OBJECT Device, PIRP Irp) {
  BOX* Box = BoxOf(Device);
  NTSTATUS Status = IoAcquireRemoveLock(&Box->RemoveLock, Irp);
  if (!NT_SUCCESS(Status)) return Complete(Irp, Status, 0);
  switch (IoGetCurrentIrpStackLocation(Irp)->MinorFunction) {
    case IRP_MN_START_DEVICE:
      Status = Start(Box, Irp);
      break;
    case IRP_MN_REMOVE_DEVICE:
      return Remove(Device, Box, Irp);
    case IRP_MN_SURPRISE_REMOVAL:
    case IRP_MN_STOP_DEVICE:
      Box->IsStarted = FALSE;
      Irp->IoStatus.Status = STATUS_SUCCESS;
      Status = PassDown(Box, Irp);
      break;
    case IRP_MN_QUERY_STOP_DEVICE:
    case IRP_MN_CANCEL_STOP_DEVICE:
    case IRP_MN_QUERY_REMOVE_DEVICE:
    case IRP_MN_CANCEL_REMOVE_DEVICE:
      Irp->IoStatus.Status = STATUS_SUCCESS;
      Status = PassDown(Box, Irp);
      break;
    default:
      Status = PassDown(Box, Irp);
  }
  IoReleaseRemoveLock(&Box->RemoveLock, Irp);
  return Status;
}

static NTSTATUS DispatchOther(PDEVICE_OBJECT Device, PIRP Irp) {
  BOX* Box = BoxOf(Device);
  NTSTATUS Status = IoAcquireRemoveLock(&Box->RemoveLock, Irp);
  if (!NT_SUCCESS(Status)) return Complete(Irp, Status, 0);
  Status = PassDown(Box, Irp);
  IoReleaseRemoveLock(&Box->RemoveLock, Irp);
  return Status;
}

static NTSTATUS Attach(PDEVICE_OBJECT Device, PDEVICE_OBJECT Physical) {
  UNICODE_STRING Name, Link;
  RtlInitUnicodeString(&Name, L"\\Device\\Letterbox");
  RtlInitUnicodeString(&Link, L"\\DosDevices\\Letterbox");
  NTSTATUS Status = IoCreateSymbolicLink(&Link, &Name);
  if (!NT_SUCCESS(Status)) return Status;
  BOX* Box = BoxOf(Device);
  IoInitializeRemoveLock(&Box->RemoveLock, LETTERBOX_TAG, 0, 0);
  ExInitializeFastMutex(&Box->Lock);
  InitializeListHead(&Box->Letters);
  Box->Lower = IoAttachDeviceToDeviceStack(Device, Physical);
  if (Box->Lower == nullptr) {
    IoDeleteSymbolicLink(&Link);
    return STATUS_NO_SUCH_DEVICE;
  }
  Device->Flags &= ~DO_DEVICE_INITIALIZING;
  return STATUS_SUCCESS;
}

static NTSTATUS AddDevice(PDRIVER_OBJECT Driver, PDEVICE_OBJECT Physical) {
  UNICODE_STRING Name;
  RtlInitUnicodeString(&Name, L"\\Device\\Letterbox");
  PDEVICE_OBJECT Device = nullptr;
  NTSTATUS Status =
      IoCreateDevice(Driver, sizeof(BOX), &Name, FILE_DEVICE_UNKNOWN, 0, FALSE, &Device);
  if (!NT_SUCCESS(Status)) return Status;
  Status = Attach(Device, Physical);
  if (!NT_SUCCESS(Status)) IoDeleteDevice(Device);
  return Status;
}

static void Unload(PDRIVER_OBJECT) {
}

extern "C" NTSTATUS DriverEntry(PDRIVER_OBJECT Driver, PUNICODE_STRING) {
  Driver->DriverUnload = Unload;
  Driver->DriverExtension->AddDevice = AddDevice;
  Driver->MajorFunction[IRP_MJ_CREATE] = DispatchOpen;
  Driver->MajorFunction[IRP_MJ_CLEANUP] = DispatchOpen;
  Driver->MajorFunction[IRP_MJ_CLOSE] = DispatchOpen;
  Driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = DispatchControl;
  Driver->MajorFunction[IRP_MJ_PNP] = DispatchPnp;
  Driver->MajorFunction[IRP_MJ_POWER] = DispatchPower;
  Driver->MajorFunction[IRP_MJ_SYSTEM_CONTROL] = DispatchOther;
  return STATUS_SUCCESS;
}

ULONG LetterboxCount(PDEVICE_OBJECT Device) {
  BOX* Box = BoxOf(Device);
  ExAcquireFastMutex(&Box->Lock);
  ULONG Count = Box->Count;
  ExReleaseFastMutex(&Box->Lock);
  return Count;
}
