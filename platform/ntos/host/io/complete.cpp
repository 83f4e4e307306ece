#include <string.h>

#include "io/requestTable.h"
#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "pool/pagedMemory.h"

// A request goes up: IofCompleteRequest, and what becomes of it at the top.

namespace ntoshost {
namespace {

constexpr char kComplete[] = "IofCompleteRequest";
constexpr u32 kControlBits =
    SL_INVOKE_ON_SUCCESS | SL_INVOKE_ON_ERROR | SL_INVOKE_ON_CANCEL | SL_PENDING_RETURNED;

void requireCompletable(IRP* request) {
  void* const address = request;
  if (request->CurrentLocation > request->StackCount) {
    violation("%s: the request at %p was completed before, or never sent.", kComplete, address);
  }
  if (request->IoStatus.Status == STATUS_PENDING) {
    violation("%s: the request at %p was completed with STATUS_PENDING.", kComplete, address);
  }
  if (request->CancelRoutine != nullptr) {
    violation("%s: the request at %p was completed with a cancel routine.", kComplete, address);
  }
}

void requireMark(RequestRecord const& record, i8 index, bool isMarked) {
  if (!record.owesPending[index - 1] || isMarked) return;
  violation(
      "%s: a dispatch returned STATUS_PENDING for the %s at %p that it has not marked pending.",
      kComplete, RequestText(record.major, record.minor).text, static_cast<void*>(record.request));
}

// The dispatch routines at the location, if they run still, have to agree with what they see here.
void notePassed(IRP* request, bool isMarked) {
  RequestsLock const lock;
  RequestRecord& record = requireRequest(request, kComplete);
  requireMark(record, request->CurrentLocation, isMarked);
  record.owesPending[request->CurrentLocation - 1] = false;
  for (DispatchCall* call = record.calls; call != nullptr; call = call->outer) {
    if (call->location != request->CurrentLocation || call->isPassed) continue;
    call->isPassed = true;
    call->isMarkedPending = isMarked;
    call->status = request->IoStatus.Status;
  }
}

bool isInvited(IRP const* request, u8 control) {
  if (request->Cancel != 0 && (control & SL_INVOKE_ON_CANCEL) != 0) return true;
  u8 const bit = NT_SUCCESS(request->IoStatus.Status) ? SL_INVOKE_ON_SUCCESS : SL_INVOKE_ON_ERROR;
  return (control & bit) != 0;
}

// Calls the completion routine of the driver above; false when it has stopped the request.
bool runRoutine(IO_COMPLETION_ROUTINE* routine, DEVICE_OBJECT* device, IRP* request,
                void* context) {
  KIRQL const level = KeGetCurrentIrql();
  NTSTATUS const status = routine(device, request, context);
  if (KeGetCurrentIrql() != level) {
    violation("A completion routine returned at IRQL %u; it was called at IRQL %u.",
              KeGetCurrentIrql(), level);
  }
  return status != STATUS_MORE_PROCESSING_REQUIRED;
}

// One location up. False when the request is no longer the completion's.
bool stepUp(IRP* request) {
  IO_STACK_LOCATION* const location = IoGetCurrentIrpStackLocation(request);
  u8 const control = location->Control;
  IO_COMPLETION_ROUTINE* const routine = location->CompletionRoutine;
  bool const isMarked = (control & SL_PENDING_RETURNED) != 0;
  notePassed(request, isMarked);
  location->Control = static_cast<u8>(control & ~kControlBits);
  request->PendingReturned = isMarked;
  IoSkipCurrentIrpStackLocation(request);
  bool const isAtTop = request->CurrentLocation > request->StackCount;
  if (routine != nullptr && isInvited(request, control)) {
    DEVICE_OBJECT* const device =
        isAtTop ? nullptr : IoGetCurrentIrpStackLocation(request)->DeviceObject;
    return runRoutine(routine, device, request, location->Context);
  }
  if (isMarked && !isAtTop) IoMarkIrpPending(request);
  return true;
}

// As the kernel does: an error that the caller learns from IoCallDriver is not told once more.
bool isAnswered(RequestRecord const& record) {
  IRP const& request = *record.request;
  return record.kind == RequestKind::executive || NT_SUCCESS(request.IoStatus.Status) ||
         request.PendingReturned != 0;
}

void copyOutput(RequestRecord const& record) {
  if (record.output == nullptr || record.request->IoStatus.Status < 0) return;
  u64 const told = record.request->IoStatus.Information;
  u64 const length = told < record.outputLength ? told : record.outputLength;
  memcpy(record.output, record.buffer, length);
}

// The kernel stores the result in the thread of the caller, at APC_LEVEL.
void finish(IRP* request) {
  PagedAccess const access;
  KEVENT* event = nullptr;
  {
    RequestsLock const lock;
    RequestRecord& record = requireRequest(request, kComplete);
    if (record.kind == RequestKind::allocated) {
      violation("%s: the request at %p came back to its maker, who has not stopped it.", kComplete,
                static_cast<void*>(request));
    }
    copyOutput(record);
    if (isAnswered(record)) {
      if (request->UserIosb != nullptr) *request->UserIosb = request->IoStatus;
      event = request->UserEvent;
    }
    destroyRequest(record, kComplete);
  }
  if (event != nullptr) KeSetEvent(event, IO_NO_INCREMENT, 0);
}

}  // namespace
}  // namespace ntoshost

void IofCompleteRequest(IRP* request, i8) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, ntoshost::kComplete);
  {
    ntoshost::RequestsLock const lock;
    ntoshost::requireRequest(request, ntoshost::kComplete);
  }
  ntoshost::requireCompletable(request);
  do {
    if (!ntoshost::stepUp(request)) return;
  } while (request->CurrentLocation <= request->StackCount);
  ntoshost::finish(request);
}
