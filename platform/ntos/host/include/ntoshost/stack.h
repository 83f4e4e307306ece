#pragma once

#include "ntos/types.h"

// The stack that drivers run on. A kernel thread has 24 KiB of it, a Linux program some MiB. So the
// strict executive runs dispatch routines, DriverEntry, AddDevice and DriverUnload on a stack of
// 24 KiB for each thread; what a driver calls from there is on it too. Below it lie 64 KiB that
// nobody may touch: who comes there is stopped with a sentence that names the driver.
//
// A thread that ends within a driver's routine is stopped with a sentence, too.
//
// A host program's frames are those of its own compiler, without optimisation perhaps, so a depth
// here is not that on Windows to the byte.
//
// The sanitizers make frames bigger, and unwind and check stacks that they know. With one of them
// in the program, and in the plain executive, drivers run on the stack of their caller.

namespace ntoshost {

constexpr u64 kKernelStackSize = u64{24} * 1024;  // bytes

// Whether drivers run on stacks of that size here.
bool hasKernelStacks();

// The most bytes that any of these stacks has had in use since the start or the last
// forgetStackDepth; 0 when none had, and without such stacks. Any IRQL, thread safe.
u64 deepestKernelStack();

// Starts anew. To be called while no driver runs.
void forgetStackDepth();

}  // namespace ntoshost
