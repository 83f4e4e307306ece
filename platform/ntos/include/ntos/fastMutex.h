#pragma once

#include "ntos/event.h"

// A fast mutex: a lock for short sections, cheaper than a KMUTEX. It is not recursive: the owner
// that takes it again waits for itself for ever (the host executive stops the program).
struct FAST_MUTEX {
  i32 Count;  // 1 when free
  KTHREAD* Owner;
  u32 Contention;
  KEVENT Event;
  u32 OldIrql;
};
static_assert(sizeof(FAST_MUTEX) == 56);
static_assert(offsetof(FAST_MUTEX, Owner) == 8);
static_assert(offsetof(FAST_MUTEX, Contention) == 16);
static_assert(offsetof(FAST_MUTEX, Event) == 24);
static_assert(offsetof(FAST_MUTEX, OldIrql) == 48);

// Makes `mutex`, in non-paged memory of the caller, ready and free. IRQL <= DISPATCH_LEVEL.
inline void ExInitializeFastMutex(FAST_MUTEX* mutex) {
  mutex->Count = 1;
  mutex->Owner = nullptr;
  mutex->Contention = 0;
  mutex->OldIrql = 0;
  KeInitializeEvent(&mutex->Event, SynchronizationEvent, 0);
}

extern "C" {

// Takes the mutex, waiting for it if need be. The caller runs at APC_LEVEL until it is released.
// IRQL <= APC_LEVEL.
NTOS_IMPORT void ExAcquireFastMutex(FAST_MUTEX* mutex);

// Releases the mutex that the calling thread owns and goes back to the level it was taken at.
// IRQL == APC_LEVEL.
NTOS_IMPORT void ExReleaseFastMutex(FAST_MUTEX* mutex);
}
