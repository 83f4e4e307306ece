#pragma once

#include "ntos/types.h"

namespace ntoshost {

// From here on a memory fault is looked at first by the executive: at the end of a kernel stack, in
// paged memory and in the image of an unloaded driver it is a broken rule. All others go to whoever
// served them before.
void installFaultHandler();

// Stops the program when the address lies below the kernel stack that the calling thread is on.
void requireNoStackOverflow(u64 address);

// Stops the program when the address, or the instruction that `signalContext` was interrupted at,
// lies in an unmapped image that is remembered.
void requireNoUnmappedImage(u64 address, void const* signalContext);

// A fault in paged memory that its protection key has caught. Stops the program when the calling
// thread is at DISPATCH_LEVEL or above; lets it in otherwise: true, and the instruction is tried
// again. `signalContext` is what a signal handler gets.
bool servePagedFault(u64 address, u32 key, void* signalContext);

}  // namespace ntoshost
