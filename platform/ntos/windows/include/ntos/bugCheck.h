#pragma once

#include "ntos/types.h"

// The end of the machine, as what a kernel module calls when it can trust nothing any more. Only a
// real kernel has it: the host executive ends the program with a sentence of its own.

constexpr u32 DRIVER_OVERRAN_STACK_BUFFER = 0xF7;

extern "C" {

// Stops the machine with this code and these four words, which a debugger or a crash dump shows.
// Never returns. Any IRQL.
[[noreturn]] NTOS_IMPORT void KeBugCheckEx(u32 code, u64 first, u64 second, u64 third, u64 fourth);
}
