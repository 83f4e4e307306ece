#include "io/requestTable.h"
#include "irqlCheck.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"

// Requests made and freed.

namespace ntoshost {
namespace {

void requireStackSize(i8 stackSize, char const* call) {
  if (stackSize > 0 && stackSize <= kMostLocations) return;
  violation("%s was asked for a request with %d stack locations; it may have 1 to %d.", call,
            stackSize, kMostLocations);
}

}  // namespace

IRP* makeSynchronous(DEVICE_OBJECT* device, KEVENT* event, IO_STATUS_BLOCK* result,
                     char const* call) {
  requireIrqlAtMost(PASSIVE_LEVEL, call);
  requireDevice(device, call);
  if (injectFault(kFaultRequest)) return nullptr;
  IRP* const request = makeRequest(device->StackSize, RequestKind::synchronous);
  if (request == nullptr) return nullptr;
  request->UserEvent = event;
  request->UserIosb = result;
  return request;
}

}  // namespace ntoshost

IRP* IoAllocateIrp(i8 stackSize, BOOLEAN) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "IoAllocateIrp");
  ntoshost::requireStackSize(stackSize, "IoAllocateIrp");
  if (ntoshost::injectFault(ntoshost::kFaultRequest)) return nullptr;
  return ntoshost::makeRequest(stackSize, ntoshost::RequestKind::allocated);
}

void IoFreeIrp(IRP* request) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "IoFreeIrp");
  ntoshost::RequestsLock const lock;
  ntoshost::RequestRecord& record = ntoshost::requireRequest(request, "IoFreeIrp");
  if (request->CurrentLocation <= request->StackCount) {
    ntoshost::violation("IoFreeIrp: the request at %p is still with a driver.",
                        static_cast<void*>(request));
  }
  ntoshost::destroyRequest(record, "IoFreeIrp");
}

IRP* IoBuildSynchronousFsdRequest(u32 majorFunction, DEVICE_OBJECT* device, void* buffer,
                                  u32 length, LARGE_INTEGER* offset, KEVENT* event,
                                  IO_STATUS_BLOCK* result) {
  constexpr char kBuild[] = "IoBuildSynchronousFsdRequest";
  if (buffer != nullptr || length != 0 || offset != nullptr) {
    ntoshost::violation("%s was given a buffer; reading and writing devices is not done.", kBuild);
  }
  IRP* const request = ntoshost::makeSynchronous(device, event, result, kBuild);
  if (request == nullptr) return nullptr;
  IoGetNextIrpStackLocation(request)->MajorFunction = static_cast<u8>(majorFunction);
  return request;
}
