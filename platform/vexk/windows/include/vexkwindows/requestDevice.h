#pragma once

// The device over which user-mode programs send requests to the dispatchers of kernel modules, see
// "vexk/iLib.h". For 64-bit programs of administrators and of the system.
//
//     HANDLE device = CreateFileW(kRequestDevicePath, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
//                                 OPEN_EXISTING, 0, nullptr);
//     DeviceIoControl(device, kRequestDeliver, &input, sizeof(input), &output, sizeof(output), ...
//
// The one device control is served in the calling thread, so the request's addresses are those of
// the program. It ends with
//   STATUS_SUCCESS                 and what the delivery said in the output
//   STATUS_NOT_SUPPORTED           for a 32-bit program
//   STATUS_INFO_LENGTH_MISMATCH    the input or the output has another size
//   STATUS_INVALID_PARAMETER       nameLength is 0 or more than there is room for
//   STATUS_INVALID_DEVICE_REQUEST  another device control, or the layer is being unloaded

#include <stddef.h>

#include "compiler/integers.h"

constexpr wchar_t kRequestDeviceName[] = L"\\Device\\oxdiag";
constexpr wchar_t kRequestDeviceLink[] = L"\\??\\oxdiag";
constexpr wchar_t kRequestDevicePath[] = L"\\\\.\\oxdiag";  // as programs open it

// Device type 0x22, function 0x800, METHOD_BUFFERED, read and write access.
constexpr u32 kRequestDeliver = 0x22u << 16 | 3u << 14 | 0x800u << 2;

struct tRequestInput {
  u64 request;     // an address in the program's memory
  u32 nameLength;  // 1 to kRequestNameSize
  u32 reserved;    // 0
  char name[128];  // of the dispatcher; what stands behind nameLength is ignored
};
constexpr size_t kRequestNameSize = sizeof(tRequestInput::name);

struct tRequestOutput {
  i32 status;  // of iLib::deliver
};

static_assert(sizeof(tRequestInput) == 144 && offsetof(tRequestInput, nameLength) == 8);
static_assert(offsetof(tRequestInput, name) == 16 && sizeof(tRequestOutput) == 4);
