#pragma once

// The scalar types of the kernel interface, the same width on every target, on those of
// "compiler/types.h".

#include "compiler/types.h"
#include "ntos/import.h"

using NTSTATUS = i32;
using BOOLEAN = u8;  // 0 or 1; a bool converts
using KIRQL = u8;    // see ntos/irql.h
using HANDLE = void*;
using ACCESS_MASK = u32;
using KPROCESSOR_MODE = i8;  // KernelMode or UserMode

enum MODE : i32 { KernelMode = 0, UserMode = 1 };

// Opaque objects of the kernel: only their addresses are handed around.
struct EPROCESS;
struct KTHREAD;

// A 64-bit number with its halves. Times are in units of 100 ns.
union LARGE_INTEGER {
  struct {
    u32 LowPart;
    i32 HighPart;
  } u;
  i64 QuadPart;
};
static_assert(sizeof(LARGE_INTEGER) == 8);

// A counted UTF-16 text. Not necessarily terminated. See ntos/string.h.
using UNICODE_STRING = struct _UNICODE_STRING;
struct _UNICODE_STRING {
  u16 Length;         // bytes, without a terminator
  u16 MaximumLength;  // bytes
  wchar_t* Buffer;
};
static_assert(sizeof(UNICODE_STRING) == 16 && offsetof(UNICODE_STRING, Buffer) == 8);

// A counted text of bytes. Not necessarily terminated.
struct ANSI_STRING {
  u16 Length;         // bytes, without a terminator
  u16 MaximumLength;  // bytes
  char* Buffer;
};
static_assert(sizeof(ANSI_STRING) == 16 && offsetof(ANSI_STRING, Buffer) == 8);

// A link of a doubly linked ring, and its anchor.
struct LIST_ENTRY {
  LIST_ENTRY* Flink;  // next
  LIST_ENTRY* Blink;  // previous
};
static_assert(sizeof(LIST_ENTRY) == 16);
