#include "io/send.h"
#include "io/control.h"
#include "io/openFiles.h"
#include "io/requestTable.h"
#include "irqlCheck.h"
#include "ntos/sync.h"
#include "ntoshost/faults.h"
#include "ntoshost/violation.h"

// Requests that the executive sends of its own accord or for a program.

namespace ntoshost {
namespace {

constinit u32 g_patience = 30'000;  // milliseconds
constexpr i64 kTicksPerMillisecond = 10'000;

// The top of a stack, kept there while a request is at it.
class TopDevice {
 public:
  explicit TopDevice(DEVICE_OBJECT* device) : m_top(IoGetAttachedDeviceReference(device)) {}
  ~TopDevice() { ObfDereferenceObject(m_top); }
  TopDevice(TopDevice const&) = delete;
  TopDevice& operator=(TopDevice const&) = delete;

  DEVICE_OBJECT* get() const { return m_top; }

 private:
  DEVICE_OBJECT* const m_top;
};

// What a request of the executive's is waited for with.
struct Completion {
  KEVENT event;
  IO_STATUS_BLOCK result;
};

IRP* makeExecutives(DEVICE_OBJECT* top, Completion& completion) {
  IRP* const request = makeRequest(top->StackSize, RequestKind::executive);
  if (request == nullptr) return nullptr;
  KeInitializeEvent(&completion.event, NotificationEvent, 0);
  request->UserEvent = &completion.event;
  request->UserIosb = &completion.result;
  return request;
}

void sendAndWait(DEVICE_OBJECT* top, IRP* request, Completion& completion) {
  u8 const major = IoGetNextIrpStackLocation(request)->MajorFunction;
  u8 const minor = IoGetNextIrpStackLocation(request)->MinorFunction;
  NTSTATUS const status = IofCallDriver(top, request);
  awaitCompletion(completion.event, status, major, minor, top);
}

void fillLocation(IO_STACK_LOCATION& location, Request const& wanted) {
  location.MajorFunction = wanted.major;
  location.MinorFunction = wanted.minor;
  location.Parameters = wanted.parameters;
  location.FileObject = wanted.file;
}

void fill(IRP* request, Request const& wanted) {
  request->IoStatus = wanted.result;
  request->AssociatedIrp.SystemBuffer = wanted.systemBuffer;
  request->UserBuffer = wanted.userBuffer;
  request->RequestorMode = wanted.mode;
  request->Tail.Overlay.OriginalFileObject = wanted.file;
  fillLocation(*IoGetNextIrpStackLocation(request), wanted);
}

NTSTATUS sendControl(DEVICE_OBJECT* device, FILE_OBJECT* file, DeviceControl& control) {
  control.information = 0;
  u32 const method = methodOf(control.code);
  if (method != METHOD_BUFFERED && method != METHOD_NEITHER) return STATUS_NOT_SUPPORTED;
  if (injectFault(kFaultRequest)) return STATUS_INSUFFICIENT_RESOURCES;
  TopDevice const top(device);
  Completion completion;
  IRP* const request = makeExecutives(top.get(), completion);
  if (request == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  ControlCall const call = {control.code,   control.input,        control.inputLength,
                            control.output, control.outputLength, control.isInternal};
  if (!fillControl(request, call)) {
    IoFreeIrp(request);
    return STATUS_INSUFFICIENT_RESOURCES;
  }
  request->RequestorMode = control.mode;
  request->Tail.Overlay.OriginalFileObject = file;
  IoGetNextIrpStackLocation(request)->FileObject = file;
  sendAndWait(top.get(), request, completion);
  control.information = completion.result.Information;
  return completion.result.Status;
}

}  // namespace

void setRequestPatience(u32 milliseconds) {
  __atomic_store_n(&g_patience, milliseconds, __ATOMIC_RELAXED);
}

void awaitCompletion(KEVENT& event, NTSTATUS dispatched, u8 major, u8 minor,
                     DEVICE_OBJECT* device) {
  if (dispatched != STATUS_PENDING) return;
  u32 const patience = __atomic_load_n(&g_patience, __ATOMIC_RELAXED);
  LARGE_INTEGER timeout;
  timeout.QuadPart = -i64{patience} * kTicksPerMillisecond;
  if (KeWaitForSingleObject(&event, Executive, KernelMode, 0, &timeout) == STATUS_SUCCESS) return;
  violation("Nobody has completed the %s to the device at %p within %u milliseconds.",
            RequestText(major, minor).text, static_cast<void*>(device), patience);
}

NTSTATUS sendRequest(DEVICE_OBJECT* device, Request& request) {
  if (injectFault(kFaultRequest)) return STATUS_INSUFFICIENT_RESOURCES;
  return sendRequestSurely(device, request);
}

NTSTATUS sendRequestSurely(DEVICE_OBJECT* device, Request& request) {
  TopDevice const top(device);
  Completion completion;
  IRP* const sent = makeExecutives(top.get(), completion);
  if (sent == nullptr) return STATUS_INSUFFICIENT_RESOURCES;
  fill(sent, request);
  sendAndWait(top.get(), sent, completion);
  request.result = completion.result;
  return request.result.Status;
}

NTSTATUS controlDevice(DEVICE_OBJECT* device, DeviceControl& control) {
  return sendControl(device, nullptr, control);
}

NTSTATUS controlDevice(FILE_OBJECT* file, DeviceControl& control) {
  requireOpen(file, "controlDevice");
  return sendControl(file->device, file, control);
}

}  // namespace ntoshost
