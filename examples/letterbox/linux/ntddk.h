#pragma once

// The driver kit's names that this driver uses, on those of the executive. A driver that needs more
// of them adds them here.

#include <cstddef>
#include <cstring>

#include "ntos/fastMutex.h"
#include "ntos/io.h"
#include "ntos/irql.h"
#include "ntos/pool.h"
#include "ntos/removeLock.h"
#include "ntos/string.h"
#include "ntos/wait.h"

using UCHAR = u8;
using ULONG = u32;
using ULONG_PTR = u64;
using PVOID = void*;
using PKEVENT = KEVENT*;
using PIRP = IRP*;
using PIO_STACK_LOCATION = IO_STACK_LOCATION*;
using PDEVICE_OBJECT = DEVICE_OBJECT*;
using PDRIVER_OBJECT = DRIVER_OBJECT*;
using PUNICODE_STRING = UNICODE_STRING*;

#define TRUE 1
#define FALSE 0
#define MAXULONG 0xFFFFFFFFu
#define CTL_CODE(type, function, method, access) ntosControlCode(type, function, method, access)
#define CONTAINING_RECORD(address, type, field) \
  reinterpret_cast<type*>(reinterpret_cast<char*>(address) - offsetof(type, field))
#define RtlCopyMemory(to, from, length) std::memcpy(to, from, length)

constexpr NTSTATUS STATUS_NO_MORE_ENTRIES = ntosStatus(0x8000001A);

inline void InitializeListHead(LIST_ENTRY* head) {
  head->Flink = head->Blink = head;
}
inline bool IsListEmpty(LIST_ENTRY const* head) {
  return head->Flink == head;
}
inline void InsertTailList(LIST_ENTRY* head, LIST_ENTRY* entry) {
  entry->Flink = head;
  entry->Blink = head->Blink;
  head->Blink->Flink = entry;
  head->Blink = entry;
}
inline void RemoveEntryList(LIST_ENTRY* entry) {
  entry->Blink->Flink = entry->Flink;
  entry->Flink->Blink = entry->Blink;
}
inline void IoInitializeRemoveLock(IO_REMOVE_LOCK* lock, ULONG tag, ULONG, ULONG) {
  IoInitializeRemoveLock(lock, tag);
}
