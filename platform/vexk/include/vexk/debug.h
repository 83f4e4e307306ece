#pragma once

// The debugger: text to it, and a stop in it.

#include "vexk/printFormat.h"

// Prints to the kernel debugger, formatted by the kernel's printf. Nothing is added: a line ends
// where the text has a newline. The kernel prints at most 512 bytes of one call.
//
//   flags     - + blank # 0
//   lengths   h         16 bits, text of bytes
//             l w       32 bits, wide text
//             ll I64    64 bits; I, too
//             I32       32 bits
//   letters   d i u o x X p c s %; C and S, text of the other width; Z, a counted string
//
// There are no floating-point numbers (%f, %e, %g, %a) and no lengths z, j, t and L. Where the
// format is a constant, clang refuses such a conversion; the host's executive stops the program
// at it, and the kernel prints what it likes. Other compilers check a format on the host by the
// rules of printf, and pass them.
//
// Any IRQL at which the arguments may be read; %ls and other wide conversions only at
// PASSIVE_LEVEL. Any thread. Does not allocate. A null format prints nothing.
//
//     ssprintf("VEX Version %u.%u or later required\n", 2u, 0u);
//
// An implementation may send the text elsewhere (the host sends it to standard error or to a
// capture); it must not block and must not fail.
VEX_API void ssprintf(char const* format, ...) VEX_PRINTF_FORMAT(1, 2) VEX_KERNEL_FORMAT(format);

// Stops in the debugger at the caller, by a breakpoint trap; returns when the debugger continues.
// Without a debugger the system's rule for an unexpected breakpoint holds: a bug check on Windows,
// the end of the program by SIGTRAP on the host. Any IRQL, any thread.
VEX_API void ssHalt();
