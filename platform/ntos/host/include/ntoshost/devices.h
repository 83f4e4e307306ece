#pragma once

#include "ntos/io.h"

// The control side of drivers, devices and requests: what the kernel's loader and a user-mode
// program do. The PnP manager's side is in ntoshost/pnp.h.
//
//     DRIVER_OBJECT* driver = nullptr;
//     ntoshost::loadDriver("slotbus", DriverEntry, &driver);
//     FILE_OBJECT* file = nullptr;
//     ntoshost::openDevice(L"\\??\\slotbus", &file);
//     ntoshost::DeviceControl control = {.code = kCode, .input = bytes, .inputLength = 4};
//     NTSTATUS status = ntoshost::controlDevice(file, control);
//     ntoshost::closeDevice(file);
//     ntoshost::unloadDriver(driver);
//     ntoshost::requireNoDevices("slotbus");
//
// All of it is called at PASSIVE_LEVEL and is thread safe.

namespace ntoshost {

// Makes the driver object \Driver\<name> and runs its DriverEntry with the registry path
// \Registry\Machine\System\CurrentControlSet\Services\<name>. Requests that DriverEntry sets no
// dispatch for are completed with STATUS_INVALID_DEVICE_REQUEST. The devices that it made are open
// for use afterwards. When it fails, its status is given, `*driver` is null and no device may be
// left. `name` has up to 63 characters, A to Z, a to z, 0 to 9.
NTSTATUS loadDriver(char const* name, DRIVER_INITIALIZE* entry, DRIVER_OBJECT** driver);

// Runs DriverUnload and forgets the driver; no device of it may be left then.
// STATUS_INVALID_DEVICE_REQUEST when it has no DriverUnload, STATUS_DEVICE_BUSY when a device of it
// is open or in the stack of a physical device that the PnP manager knows: nothing happens then.
// Stops the program when the calling thread has yet to return into the driver.
NTSTATUS unloadDriver(DRIVER_OBJECT* driver);

// What a driver leaves. Blocks of the pool, requests and mutexes belong to the driver whose routine
// took them, or called what took them: a dispatch routine, DriverEntry, AddDevice, DriverUnload. In
// its unload, and after a DriverEntry that fails, a mutex that a thread still owns and a request
// that was not freed stop the program; blocks are told with one line on standard error, for a
// library that the driver calls may keep some for itself. The plain executive knows of the requests
// alone.
struct DriverResidue {
  u64 blocks;
  u64 bytes;  // in them
};

// The blocks taken within a loaded driver and not given back. They are no driver's after its
// unload.
DriverResidue residueOf(DRIVER_OBJECT const* driver);

// Opens a device for a user-mode program: a create request to the top of its stack. The name is
// \Device\... or a symbolic link, \??\... or \DosDevices\...
// STATUS_OBJECT_NAME_NOT_FOUND: nobody has the name. STATUS_NO_SUCH_DEVICE: the device is not ready
// (DO_DEVICE_INITIALIZING), deleted, or its physical device is not started or about to go.
// STATUS_ACCESS_DENIED: it is exclusive and open, or its security does not let the caller in, see
// ntoshost/security.h. Or what the driver completes the request with;
// `*file` is null in all these cases. This is the file object of the requests; it is the caller's
// until he closes it. STATUS_INSUFFICIENT_RESOURCES: see kFaultRequest.
NTSTATUS openDevice(wchar_t const* name, FILE_OBJECT** file);
NTSTATUS openDevice(DEVICE_OBJECT* device, FILE_OBJECT** file);

// Closes: a cleanup request and then a close request. What the driver says to them is of no
// account. A removal that waited for the last handle is carried out now.
void closeDevice(FILE_OBJECT* file);

// A device control. With METHOD_NEITHER the two pointers travel as they are, whatever they are;
// with METHOD_BUFFERED the kernel copies. The other methods give STATUS_NOT_SUPPORTED.
struct DeviceControl {
  u32 code = 0;
  void* input = nullptr;
  u32 inputLength = 0;  // bytes
  void* output = nullptr;
  u32 outputLength = 0;  // bytes
  bool isInternal = false;
  KPROCESSOR_MODE mode = UserMode;
  u64 information = 0;  // out: bytes that the driver says it wrote
};

// Sends it in the calling thread and waits for its completion. Returns the status of that.
NTSTATUS controlDevice(FILE_OBJECT* file, DeviceControl& control);

// The same for a device that is not opened, such as a child of a bus.
NTSTATUS controlDevice(DEVICE_OBJECT* device, DeviceControl& control);

// Any request at all.
struct Request {
  u8 major = 0;
  u8 minor = 0;
  decltype(IO_STACK_LOCATION::Parameters) parameters = {};
  IO_STATUS_BLOCK result = {{STATUS_NOT_SUPPORTED}, 0};  // in: what it starts with; out: its end
  void* systemBuffer = nullptr;
  void* userBuffer = nullptr;
  FILE_OBJECT* file = nullptr;
  KPROCESSOR_MODE mode = KernelMode;
};

// Sends it to the top of the stack that `device` is in, waits for its completion and returns
// request.result.Status. STATUS_INSUFFICIENT_RESOURCES without it being sent: see kFaultRequest.
// What is answered in memory is the caller's. For a power request it may be called up to
// DISPATCH_LEVEL, where it must not pend.
NTSTATUS sendRequest(DEVICE_OBJECT* device, Request& request);

// How long the executive waits for the completion of what it has sent before it stops the program
// with the name of the request. 30 seconds at the start.
void setRequestPatience(u32 milliseconds);

// What exists: devices that were made and have not gone (references keep a deleted one), requests
// that were made and not freed, open files, symbolic links, drivers.
struct DeviceCounts {
  u64 devices;
  u64 requests;
  u64 files;
  u64 links;
  u64 drivers;
};
DeviceCounts countDevices();

// The references that ObfReferenceObject and the kernel have on the device beside its own
// existence. 0 for one that nobody refers to.
u64 referencesOn(DEVICE_OBJECT* device);

// Whether the device has a list of its own of who may open it, see "ntoshost/security.h".
bool hasOwnSecurity(DEVICE_OBJECT* device);

// Prints them on standard error, one line each.
void reportDevices();

// Stops the program when one of the counts is not 0. `who` heads the sentence.
void requireNoDevices(char const* who);

}  // namespace ntoshost
