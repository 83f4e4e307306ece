#pragma once

#include "ntos/types.h"

// User-mode memory: the memory of the user process, by default this process itself.

namespace ntoshost {

// Makes `pid` the user process of all threads; 0 is this process. False, and nothing changes, when
// there is no such process or its memory may not be touched.
bool setUserProcess(i32 pid);

// The process id that the copies use.
i32 getUserProcess();

// Copies `length` bytes from or to the user process and returns how many were copied before the
// first byte that cannot be read or written: `length` when there is none, 0 when the process is
// gone. IRQL <= APC_LEVEL. Thread safe.
size_t copyFromUser(void* to, u64 userAddress, size_t length);
size_t copyToUser(u64 userAddress, void const* from, size_t length);

}  // namespace ntoshost
