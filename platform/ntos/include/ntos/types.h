#pragma once

// The scalar types of the kernel interface, the same width on every target. `i32`, `u32`, `i64`
// and `u64` stand where the documented interface says long, unsigned long, __int64 and
// unsigned __int64.

#include <stddef.h>
#include <stdint.h>

#include "ntos/import.h"
#include "ntos/integers.h"

static_assert(sizeof(i8) == 1 && sizeof(i16) == 2 && sizeof(i32) == 4 && sizeof(i64) == 8);
static_assert(sizeof(u8) == 1 && sizeof(u16) == 2 && sizeof(u32) == 4 && sizeof(u64) == 8);
static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16 on every target");
static_assert(sizeof(void*) == 8, "64-bit targets only");

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
struct UNICODE_STRING {
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
