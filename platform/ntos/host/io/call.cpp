#include "io/requestTable.h"
#include "io/runDriver.h"
#include "irqlCheck.h"
#include "ntos/thread.h"
#include "ntoshost/violation.h"
#include "pool/answers.h"
#include "wait/heldLocks.h"

// A request goes down: IofCallDriver, and what a dispatch routine may say when it returns.

namespace ntoshost {
namespace {

constexpr char kCall[] = "IofCallDriver";

bool isForPassiveLevel(u8 major) {
  return major != IRP_MJ_POWER && major != IRP_MJ_DEVICE_CONTROL &&
         major != IRP_MJ_INTERNAL_DEVICE_CONTROL;
}

void requireRoom(IRP* request, DEVICE_OBJECT* device) {
  if (request->CurrentLocation > request->StackCount + 1) {
    violation("%s: the request at %p was moved above its highest stack location.", kCall,
              static_cast<void*>(request));
  }
  if (request->CurrentLocation > 1) return;
  violation("%s: the request at %p has no stack location left for the device at %p.", kCall,
            static_cast<void*>(request), static_cast<void*>(device));
}

// Plug-and-play, power and system control requests that nobody serves have to come back as such.
void requireSoundStart(RequestRecord const& record, u8 major) {
  IRP* const request = record.request;
  bool const isFirst = record.device == nullptr;  // a driver that passes it on may be at the top
  bool const isWatched =
      major == IRP_MJ_PNP || major == IRP_MJ_POWER || major == IRP_MJ_SYSTEM_CONTROL;
  if (!isFirst || !isWatched || request->IoStatus.Status == STATUS_NOT_SUPPORTED) return;
  violation("%s: the request at %p starts with status 0x%08x; it has to be STATUS_NOT_SUPPORTED.",
            kCall, static_cast<void*>(request), static_cast<u32>(request->IoStatus.Status));
}

void requireResident(void const* buffer) {
  if (!isPagedBlock(buffer)) return;
  violation("%s was called at IRQL %u with a buffer at %p in PagedPool.", kCall, KeGetCurrentIrql(),
            buffer);
}

// At DISPATCH_LEVEL nobody can touch paged memory.
void requireResidentBuffers(IRP const* request, IO_STACK_LOCATION const& location) {
  if (KeGetCurrentIrql() < DISPATCH_LEVEL || location.MajorFunction == IRP_MJ_POWER) return;
  requireResident(request->UserBuffer);
  requireResident(location.Parameters.DeviceIoControl.Type3InputBuffer);
}

void requireSoundLocation(RequestRecord const& record, DEVICE_OBJECT* device) {
  IRP* const request = record.request;
  IO_STACK_LOCATION const& next = *IoGetNextIrpStackLocation(request);
  if (next.MajorFunction > IRP_MJ_MAXIMUM_FUNCTION) {
    violation("%s: the request at %p has the major code 0x%02x; 0x%02x is the highest.", kCall,
              static_cast<void*>(request), next.MajorFunction, IRP_MJ_MAXIMUM_FUNCTION);
  }
  if (device->DriverObject->MajorFunction[next.MajorFunction] == nullptr) {
    violation("%s: the driver %s has no dispatch for the %s.", kCall,
              DriverText(device->DriverObject).text,
              RequestText(next.MajorFunction, next.MinorFunction).text);
  }
  if (isForPassiveLevel(next.MajorFunction)) {
    requireIrqlOnly(PASSIVE_LEVEL, "IofCallDriver with such a request");
  }
  requireResidentBuffers(request, next);
  requireSoundStart(record, next.MajorFunction);
}

// The request is at the device from here on.
void stepDown(DispatchCall& call, IRP* request) {
  --request->CurrentLocation;
  IO_STACK_LOCATION* const location = --request->Tail.Overlay.CurrentStackLocation;
  location->DeviceObject = call.device;
  call.major = location->MajorFunction;
  call.minor = location->MinorFunction;
  call.location = request->CurrentLocation;
}

void enter(DispatchCall& call, IRP* request) {
  RequestsLock const lock;
  RequestRecord& record = requireRequest(request, kCall);
  requireRoom(request, call.device);
  requireSoundLocation(record, call.device);
  stepDown(call, request);
  record.owesPending[call.location - 1] = false;
  record.major = call.major;
  record.minor = call.minor;
  record.device = call.device;
  call.record = &record;
  call.outer = record.calls;
  record.calls = &call;
}

[[noreturn]] void rejectStatus(DispatchCall const& call, NTSTATUS status, char const* why) {
  violation("The driver %s returned 0x%08x for the %s %s.", call.driver.text,
            static_cast<u32>(status), RequestText(call.major, call.minor).text, why);
}

void requireSoundEnd(DispatchCall const& call, NTSTATUS status) {
  if (call.isMarkedPending != (status == STATUS_PENDING)) {
    rejectStatus(call, status,
                 call.isMarkedPending ? "that it has marked pending"
                                      : "that it has completed without marking it pending");
  }
  if (status == STATUS_PENDING || status == call.status) return;
  violation("The driver %s returned 0x%08x for the %s that was completed with 0x%08x.",
            call.driver.text, static_cast<u32>(status), RequestText(call.major, call.minor).text,
            static_cast<u32>(call.status));
}

void forget(DispatchCall& call) {
  if (call.record == nullptr) return;
  DispatchCall** link = &call.record->calls;
  while (*link != &call) link = &(*link)->outer;
  *link = call.outer;
}

void leave(DispatchCall& call, NTSTATUS status) {
  RequestsLock const lock;
  forget(call);
  if (call.isPassed) return requireSoundEnd(call, status);
  if (status != STATUS_PENDING || call.record == nullptr) {
    rejectStatus(call, status, "that it has neither completed nor passed on");
  }
  call.record->owesPending[call.location - 1] = true;
}

NTSTATUS dispatch(DispatchCall const& call, IRP* request) {
  DRIVER_OBJECT* const driver = call.device->DriverObject;
  DRIVER_DISPATCH* const routine = driver->MajorFunction[call.major];
  return runDriver(driver, [&] { return routine(call.device, request); });
}

// What a thread has and is in when a dispatch is called, and again when that returns: its caller
// may be a program, to which no thread comes back with more.
struct ThreadState {
  KIRQL level = KeGetCurrentIrql();
  u32 locks = countOwnedLocks();
  u32 regions = g_words.countRegions();
};

void requireSameState(DispatchCall const& call, ThreadState const& before) {
  ThreadState const now;
  char const* const driver = call.driver.text;
  RequestText const request(call.major, call.minor);
  if (now.level != before.level) {
    violation("The driver %s returned from the %s at IRQL %u; it was called at IRQL %u.", driver,
              request.text, now.level, before.level);
  }
  if (now.locks > before.locks) {
    violation("The driver %s returned from the %s and owns the mutex at %p, taken meanwhile.",
              driver, request.text, lastOwnedLock());
  }
  if (now.regions == before.regions) return;
  violation("The driver %s returned from the %s in %u critical regions; it was called in %u.",
            driver, request.text, now.regions, before.regions);
}

}  // namespace
}  // namespace ntoshost

NTSTATUS IofCallDriver(DEVICE_OBJECT* device, IRP* request) {
  ntoshost::requireNoFastMutex(ntoshost::kCall);
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, ntoshost::kCall);
  ntoshost::requireDevice(device, ntoshost::kCall);
  ntoshost::ThreadState const before;
  ntoshost::DispatchCall call(device);
  ntoshost::enter(call, request);
  NTSTATUS const status = ntoshost::dispatch(call, request);
  ntoshost::requireSameState(call, before);
  ntoshost::leave(call, status);
  return status;
}
