#include "io/requestTable.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "io/currentDriver.h"
#include "ntoshost/violation.h"
#include "ownLock.h"
#include "pool/objects.h"

namespace ntoshost {
namespace {

constexpr u32 kRequestTag = ntosPoolTag("Irp ");
constexpr i16 kRequestType = 6;  // what the kernel writes into Type
constexpr size_t kBuckets = 256;

// Between the request and its lowest location: nobody's, so a driver that takes a location too many
// is found.
constexpr size_t kGapSize = sizeof(IO_STACK_LOCATION) + 8;
constexpr u8 kGapByte = 0xFA;

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit RequestRecord* g_buckets[kBuckets] = {};
constinit u64 g_count = 0;

RequestRecord** bucketOf(IRP const* request) {
  constexpr u64 kGoldenRatio = 0x9E3779B97F4A7C15;
  return &g_buckets[reinterpret_cast<uintptr_t>(request) * kGoldenRatio >> 56];
}

u8* gapOf(IRP* request) {
  return reinterpret_cast<u8*>(request + 1);
}

IO_STACK_LOCATION* locationsOf(IRP* request) {
  return reinterpret_cast<IO_STACK_LOCATION*>(gapOf(request) + kGapSize);
}

void requireWholeGap(IRP* request, char const* call) {
  for (size_t i = 0; i < kGapSize; ++i) {
    if (gapOf(request)[i] == kGapByte) continue;
    violation("%s: a driver has used a stack location that the request at %p does not have.", call,
              static_cast<void*>(request));
  }
}

IRP* takeRequest(i8 stackSize) {
  size_t const size =
      sizeof(IRP) + kGapSize + static_cast<size_t>(stackSize) * sizeof(IO_STACK_LOCATION);
  IRP* const request = static_cast<IRP*>(takeObject(BlockKind::request, size, kRequestTag));
  if (request == nullptr) return nullptr;
  memset(gapOf(request), kGapByte, kGapSize);
  request->Type = kRequestType;
  request->Size = static_cast<u16>(size);
  request->StackCount = stackSize;
  request->CurrentLocation = static_cast<i8>(stackSize + 1);
  request->Tail.Overlay.CurrentStackLocation = locationsOf(request) + stackSize;
  return request;
}

void add(RequestRecord* record) {
  RequestsLock const lock;
  RequestRecord** const bucket = bucketOf(record->request);
  record->next = *bucket;
  *bucket = record;
  ++g_count;
}

void remove(RequestRecord& record) {
  RequestRecord** link = bucketOf(record.request);
  while (*link != &record) link = &(*link)->next;
  *link = record.next;
  --g_count;
}

[[noreturn]] void rejectRequest(IRP const* request, char const* call) {
  void const* const address = request;
  if (lookFor(BlockKind::request, request) == Presence::freed) {
    violation("%s was given the request at %p, which was completed or freed before.", call,
              address);
  }
  violation("%s was given something at %p that is no request.", call, address);
}

char const* nameOf(u8 major) {
  switch (major) {
    case IRP_MJ_CREATE:
      return "create";
    case IRP_MJ_CLOSE:
      return "close";
    case IRP_MJ_CLEANUP:
      return "cleanup";
    case IRP_MJ_DEVICE_CONTROL:
      return "device control";
    case IRP_MJ_INTERNAL_DEVICE_CONTROL:
      return "internal device control";
    case IRP_MJ_POWER:
      return "power";
    case IRP_MJ_SYSTEM_CONTROL:
      return "system control";
    case IRP_MJ_PNP:
      return "plug-and-play";
    default:
      return nullptr;
  }
}

}  // namespace

RequestsLock::RequestsLock() {
  lockOwn(g_lock);
}
RequestsLock::~RequestsLock() {
  unlockOwn(g_lock);
}

DispatchCall::DispatchCall(DEVICE_OBJECT* called)
    : outer(nullptr),
      record(nullptr),
      device(called),
      driver(called->DriverObject),
      major(0),
      minor(0),
      location(0),
      isPassed(false),
      isMarkedPending(false),
      status(STATUS_SUCCESS) {
}

IRP* makeRequest(i8 stackSize, RequestKind kind) {
  RequestRecord* const record = static_cast<RequestRecord*>(calloc(1, sizeof(RequestRecord)));
  IRP* const request = record == nullptr ? nullptr : takeRequest(stackSize);
  if (request == nullptr) {
    free(record);
    return nullptr;
  }
  record->request = request;
  record->kind = kind;
  record->driver = currentDriver();
  add(record);
  return request;
}

bool giveBuffer(IRP* request, size_t size) {
  RequestsLock const lock;
  RequestRecord& record = requireRequest(request, "giveBuffer");
  record.buffer = takeObject(BlockKind::buffer, size, kRequestTag);
  request->AssociatedIrp.SystemBuffer = record.buffer;
  return record.buffer != nullptr;
}

void destroyRequest(RequestRecord& record, char const* call) {
  for (DispatchCall* each = record.calls; each != nullptr; each = each->outer) {
    each->record = nullptr;
  }
  remove(record);
  requireWholeGap(record.request, call);
  if (record.buffer != nullptr) releaseObject(record.buffer, call);
  releaseObject(record.request, call);
  free(&record);
}

RequestRecord& requireRequest(IRP* request, char const* call) {
  RequestRecord* record = *bucketOf(request);
  while (record != nullptr && record->request != request) record = record->next;
  if (record == nullptr) rejectRequest(request, call);
  requireWholeGap(request, call);
  return *record;
}

IRP* requestMadeBy(DRIVER_OBJECT const* driver) {
  RequestsLock const lock;
  for (RequestRecord const* record : g_buckets) {
    for (; record != nullptr; record = record->next) {
      if (record->driver == driver && record->kind != RequestKind::executive) {
        return record->request;
      }
    }
  }
  return nullptr;
}

u64 countRequests() {
  RequestsLock const lock;
  return g_count;
}

void visitRequests(void (*visit)(RequestRecord const& record)) {
  RequestsLock const lock;
  for (RequestRecord const* record : g_buckets) {
    for (; record != nullptr; record = record->next) visit(*record);
  }
}

RequestText::RequestText(u8 major, u8 minor) {
  char const* const name = nameOf(major);
  if (name == nullptr) {
    snprintf(text, sizeof(text), "request 0x%02x", major);
  } else if (major == IRP_MJ_PNP || major == IRP_MJ_POWER) {
    snprintf(text, sizeof(text), "%s request 0x%02x", name, minor);
  } else {
    snprintf(text, sizeof(text), "%s request", name);
  }
}

}  // namespace ntoshost
