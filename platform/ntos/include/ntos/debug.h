#pragma once

#include <stdarg.h>

#include "ntos/types.h"

// The kernel debugger's console.

// Who prints (vDbgPrintEx). A kernel debugger filters by it.
constexpr u32 DPFLTR_IHVDRIVER_ID = 77;
constexpr u32 DPFLTR_DEFAULT_ID = 101;

// How important the text is. Of DPFLTR_IHVDRIVER_ID the kernel shows errors unless told otherwise.
constexpr u32 DPFLTR_ERROR_LEVEL = 0;
constexpr u32 DPFLTR_WARNING_LEVEL = 1;
constexpr u32 DPFLTR_TRACE_LEVEL = 2;
constexpr u32 DPFLTR_INFO_LEVEL = 3;

// The most bytes one call prints; a longer text is cut and ends with a newline there.
constexpr u32 kDebugPrintLimit = 512;

extern "C" {

// Prints a text. `format` is that of the kernel's printf: flags `-+ #0`, width and precision (also
// `*`), sizes h l ll w I32 I64 I, conversions c C d i o u x X p s S Z %. Integers are 32 bits wide,
// also with `l`; 64 bits need ll or I64. `%ls`, `%ws` and `%S` take UTF-16 text, `%Z` and `%wZ` a
// counted text. There is no floating point and no `%n`.
// IRQL: any; with UTF-16 text PASSIVE_LEVEL.
NTOS_IMPORT u32 DbgPrint(char const* format, ...);

// The same with the arguments as a list, the component and the level.
NTOS_IMPORT u32 vDbgPrintEx(u32 componentId, u32 level, char const* format, va_list arguments);
}
