#pragma once

#include <pthread.h>

#include "io/deviceTable.h"

namespace ntoshost {

struct RequestRecord;

// A dispatch routine that has a request now, on the stack of the thread that runs it.
struct DispatchCall {
  DispatchCall* outer;    // another one that has the same request
  RequestRecord* record;  // null: the request is gone
  DEVICE_OBJECT* device;
  DriverText driver;
  u8 major;
  u8 minor;
  i8 location;
  bool isPassed;         // the request has been completed at the location
  bool isMarkedPending;  // and was marked pending there
  NTSTATUS status;       // with this status

  explicit DispatchCall(DEVICE_OBJECT* called);
};

enum class RequestKind : u8 {
  allocated,    // its owner stops it in a completion routine and frees it
  synchronous,  // the kernel frees it, and answers a wait as the kernel does
  executive,    // the executive's own: like it, and the result is always stored
};

constexpr i8 kMostLocations = 100;

// What the executive knows of a request beside the request.
struct RequestRecord {
  RequestRecord* next;  // in its bucket
  IRP* request;
  DispatchCall* calls;
  DRIVER_OBJECT* driver;  // that ran when it was made; null: none
  RequestKind kind;
  u8 major;  // as it was sent last
  u8 minor;
  DEVICE_OBJECT* device;             // that it was sent to last
  bool owesPending[kMostLocations];  // a dispatch said STATUS_PENDING, by location
  void* buffer;                      // of METHOD_BUFFERED, the request's own
  void* output;                      // where it goes at the end
  u32 outputLength;
};

class RequestsLock {
 public:
  RequestsLock();
  ~RequestsLock();
  RequestsLock(RequestsLock const&) = delete;
  RequestsLock& operator=(RequestsLock const&) = delete;
};

// A request with its record; null when memory is exhausted.
IRP* makeRequest(i8 stackSize, RequestKind kind);

// A request for the top of a stack whose waiter is told by the kernel; null when memory is
// exhausted or a fault was injected.
IRP* makeSynchronous(DEVICE_OBJECT* device, KEVENT* event, IO_STATUS_BLOCK* result,
                     char const* call);

// Gives the request a buffer of its own of `size` bytes; false when memory is exhausted.
bool giveBuffer(IRP* request, size_t size);

// The end of both. The caller has the lock.
void destroyRequest(RequestRecord& record, char const* call);

// Stops the program unless this is a request that was not freed. The caller has the lock.
RequestRecord& requireRequest(IRP* request, char const* call);

// A request that was made while this driver ran and has not been freed, or null.
IRP* requestMadeBy(DRIVER_OBJECT const* driver);

u64 countRequests();
void visitRequests(void (*visit)(RequestRecord const& record));

// What a request is, for the sentences: "plug-and-play request 0x07".
struct RequestText {
  RequestText(u8 major, u8 minor);
  char text[48];
};

}  // namespace ntoshost
