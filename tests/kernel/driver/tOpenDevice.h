#pragma once

#include "ntos/io.h"
#include "ntos/string.h"
#include "vexkwindows/requestDevice.h"

// The device over which programs send requests, open while the object lives.
class tOpenDevice {
 public:
  tOpenDevice() {
    UNICODE_STRING name;
    OBJECT_ATTRIBUTES attributes;
    IO_STATUS_BLOCK result;
    RtlInitUnicodeString(&name, kRequestDeviceLink);
    InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE,
                               nullptr, nullptr);
    status = ZwCreateFile(&handle, GENERIC_READ | GENERIC_WRITE | SYNCHRONIZE, &attributes, &result,
                          nullptr, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          FILE_OPEN, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
  }
  ~tOpenDevice() {
    if (handle != nullptr) ZwClose(handle);
  }
  tOpenDevice(tOpenDevice const&) = delete;
  tOpenDevice& operator=(tOpenDevice const&) = delete;

  NTSTATUS control(u32 code, u32 inputLength, u32 outputLength) {
    IO_STATUS_BLOCK result = {};
    moved = 0;
    NTSTATUS const ended = ZwDeviceIoControlFile(handle, nullptr, nullptr, nullptr, &result, code,
                                                 &input, inputLength, &output, outputLength);
    moved = result.Information;
    return ended;
  }

  NTSTATUS deliver() { return control(kRequestDeliver, sizeof(input), sizeof(output)); }

  void name(char const* text) {
    input.nameLength = static_cast<u32>(__builtin_strlen(text));
    __builtin_memcpy(input.name, text, input.nameLength);
  }

  NTSTATUS status;
  HANDLE handle = nullptr;
  tRequestInput input = {};
  tRequestOutput output = {77};
  u64 moved = 0;
};
