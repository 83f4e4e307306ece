#pragma once

#include "ntos/dispatcherHeader.h"

// A kernel mutex: one thread owns it, any number of times over, and gives it back as often.
// It is taken with KeWaitForSingleObject.
struct KMUTANT {
  DISPATCHER_HEADER Header;
  LIST_ENTRY MutantListEntry;
  KTHREAD* OwnerThread;
  BOOLEAN Abandoned;
  u8 ApcDisable;
};
static_assert(sizeof(KMUTANT) == 56);
static_assert(offsetof(KMUTANT, MutantListEntry) == 24);
static_assert(offsetof(KMUTANT, OwnerThread) == 40);
static_assert(offsetof(KMUTANT, Abandoned) == 48);
static_assert(offsetof(KMUTANT, ApcDisable) == 49);

using KMUTEX = KMUTANT;

extern "C" {

// Makes `mutex`, in non-paged memory of the caller, ready and free. `level` is reserved (0).
// Any IRQL.
NTOS_IMPORT void KeInitializeMutex(KMUTEX* mutex, u32 level);

// Gives the mutex back once; the calling thread owns it. Returns 0 when the mutex is free now,
// below 0 when it is still owned. `wait` is 0. The mutex must not be given back at a higher IRQL
// than it was taken at.
// IRQL <= DISPATCH_LEVEL. Thread safe.
NTOS_IMPORT i32 KeReleaseMutex(KMUTEX* mutex, BOOLEAN wait);
}
