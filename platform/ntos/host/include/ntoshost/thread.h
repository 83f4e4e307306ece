#pragma once

#include "ntos/types.h"

namespace ntoshost {

// Makes PsGetCurrentThreadId answer `id` in the calling thread; 0 means the real id again. Locks
// still tell threads apart by what they are.
void overrideCurrentThreadId(u64 id);

// Threads are suspended as the kernel does it, by a normal kernel APC: not within a critical or
// guarded region, not while they own a kernel mutex, not above PASSIVE_LEVEL, but as soon as that
// is over. The strict executive alone does so.
//
//     std::thread worker([&] { ntoshost::suspendAtCall(3); work(); });
//     if (ntoshost::awaitSuspended(1000)) look();
//     ntoshost::resumeThreads();

// Asks the calling thread at its nth call of the executive from here on, counted from 1: of those
// that state a highest IRQL, and those that initialise an event or a mutex. 0 asks it no more.
void suspendAtCall(u64 n);

// Whether the calling thread has made that many calls since.
bool wasSuspensionAsked();

// Waits until a thread is suspended; false when none is after that time.
bool awaitSuspended(u32 milliseconds);

// Lets every thread that is suspended now go on.
void resumeThreads();

}  // namespace ntoshost
