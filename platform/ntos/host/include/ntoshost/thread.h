#pragma once

#include "ntos/types.h"

namespace ntoshost {

// Makes PsGetCurrentThreadId answer `id` in the calling thread; 0 means the real id again. Locks
// still tell threads apart by what they are.
void overrideCurrentThreadId(u64 id);

// Makes KeAreAllApcsDisabled say yes in critical regions, too, as Wine's kernel does, which ends
// calls of files there all the same; false makes it the kernel's again.
void sayAllApcsDisabledInRegions(bool saysYes);

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

// How long a thread may be suspended before the program is stopped with a sentence: most likely,
// whoever should resume it waits for it. 30,000 at the start.
void setSuspensionPatience(u32 milliseconds);

// Runs `work` in a thread of its own that is asked to be suspended at its nth call, and `meanwhile`
// in the calling thread, once, while it is. Returns whether the work has made that many calls.
bool suspendAt(u64 n, void (*work)(void*), void* workArgument, void (*meanwhile)(void*),
               void* meanwhileArgument);
template <class Work, class Meanwhile>
bool suspendAt(u64 n, Work work, Meanwhile meanwhile) {
  return suspendAt(
      n, [](void* given) { (*static_cast<Work*>(given))(); }, &work,
      [](void* given) { (*static_cast<Meanwhile*>(given))(); }, &meanwhile);
}

// The same for n = 1, 2, ... until the work makes no more calls. Returns how many it has made; 0
// over the plain executive.
//
//     u64 calls = ntoshost::suspendAtEachCall([&] { read(first); }, [&] { read(second); });
template <class Work, class Meanwhile>
u64 suspendAtEachCall(Work work, Meanwhile meanwhile) {
  u64 n = 1;
  while (suspendAt(n, work, meanwhile)) ++n;
  return n - 1;
}

}  // namespace ntoshost
