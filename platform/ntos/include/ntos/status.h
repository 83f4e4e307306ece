#pragma once

#include "ntos/types.h"

// Status codes of the kernel calls: bits 31..30 are the severity, 0 success, 1 information,
// 2 warning, 3 error. Warnings and errors are negative.

constexpr NTSTATUS ntosStatus(u32 bits) {
  return static_cast<NTSTATUS>(bits);
}

// True for success and information.
constexpr bool NT_SUCCESS(NTSTATUS status) {
  return status >= 0;
}

constexpr NTSTATUS STATUS_SUCCESS = 0;
constexpr NTSTATUS STATUS_WAIT_0 = 0;
constexpr NTSTATUS STATUS_TIMEOUT = 0x102;
constexpr NTSTATUS STATUS_PENDING = 0x103;
constexpr NTSTATUS STATUS_BUFFER_OVERFLOW = ntosStatus(0x80000005);
constexpr NTSTATUS STATUS_UNSUCCESSFUL = ntosStatus(0xC0000001);
constexpr NTSTATUS STATUS_NOT_IMPLEMENTED = ntosStatus(0xC0000002);
constexpr NTSTATUS STATUS_INVALID_INFO_CLASS = ntosStatus(0xC0000003);
constexpr NTSTATUS STATUS_INFO_LENGTH_MISMATCH = ntosStatus(0xC0000004);
constexpr NTSTATUS STATUS_ACCESS_VIOLATION = ntosStatus(0xC0000005);
constexpr NTSTATUS STATUS_INVALID_HANDLE = ntosStatus(0xC0000008);
constexpr NTSTATUS STATUS_INVALID_PARAMETER = ntosStatus(0xC000000D);
constexpr NTSTATUS STATUS_NO_SUCH_FILE = ntosStatus(0xC000000F);
constexpr NTSTATUS STATUS_END_OF_FILE = ntosStatus(0xC0000011);
constexpr NTSTATUS STATUS_ACCESS_DENIED = ntosStatus(0xC0000022);
constexpr NTSTATUS STATUS_BUFFER_TOO_SMALL = ntosStatus(0xC0000023);
constexpr NTSTATUS STATUS_OBJECT_TYPE_MISMATCH = ntosStatus(0xC0000024);
constexpr NTSTATUS STATUS_OBJECT_NAME_INVALID = ntosStatus(0xC0000033);
constexpr NTSTATUS STATUS_OBJECT_NAME_NOT_FOUND = ntosStatus(0xC0000034);
constexpr NTSTATUS STATUS_OBJECT_NAME_COLLISION = ntosStatus(0xC0000035);
constexpr NTSTATUS STATUS_OBJECT_PATH_NOT_FOUND = ntosStatus(0xC000003A);
constexpr NTSTATUS STATUS_OBJECT_PATH_SYNTAX_BAD = ntosStatus(0xC000003B);
constexpr NTSTATUS STATUS_SHARING_VIOLATION = ntosStatus(0xC0000043);
constexpr NTSTATUS STATUS_DISK_FULL = ntosStatus(0xC000007F);
constexpr NTSTATUS STATUS_INSUFFICIENT_RESOURCES = ntosStatus(0xC000009A);
constexpr NTSTATUS STATUS_FILE_IS_A_DIRECTORY = ntosStatus(0xC00000BA);
constexpr NTSTATUS STATUS_NOT_SUPPORTED = ntosStatus(0xC00000BB);
constexpr NTSTATUS STATUS_NOT_A_DIRECTORY = ntosStatus(0xC0000103);
constexpr NTSTATUS STATUS_IMAGE_ALREADY_LOADED = ntosStatus(0xC000010E);
constexpr NTSTATUS STATUS_DRIVER_UNABLE_TO_LOAD = ntosStatus(0xC000026C);
constexpr NTSTATUS STATUS_REVISION_MISMATCH = ntosStatus(0xC0000059);
