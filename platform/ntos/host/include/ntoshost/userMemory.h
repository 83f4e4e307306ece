#pragma once

#include "ntos/types.h"

// User-mode memory: the memory of the calling thread's user process, by default this process
// itself. Threads that serve different processes do so side by side.

namespace ntoshost {

// Makes `pid` the user process of the calling thread; 0 is this process, and what a thread says
// before it ends if it said another. False, and nothing changes, when there is no such process or
// its memory may not be touched. The process is held on to: when it ends it is gone, and another
// one that gets its number is not taken for it.
bool setUserProcess(i32 pid);

// Whether the requests of the calling thread are those of a 32-bit program; not at the start.
void set32bitProcess(bool is32bit);

// The process id that the copies of the calling thread use.
i32 getUserProcess();

// Copies `length` bytes from or to the user process and returns how many were copied before the
// first byte that cannot be read or written: `length` when there is none, 0 when the process is
// gone. IRQL <= APC_LEVEL. Thread safe.
size_t copyFromUser(void* to, u64 userAddress, size_t length);
size_t copyToUser(u64 userAddress, void const* from, size_t length);

}  // namespace ntoshost
