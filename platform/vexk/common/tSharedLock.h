#pragma once

// The lock behind one or more handles.

#include "ntos/irql.h"
#include "ntos/sync.h"
#include "ntos/thread.h"
#include "vexk/memory.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

// A count of the threads that own the lock or wait for it, and an event. The event is touched only
// when somebody waits:
//   - Who makes the count 1 owns the lock; everybody else waits for the event.
//   - Who releases the lock while others are counted sets the event once, for one of them, and
//     nobody else can own the lock before that one has released it.
//   - A thread whose time has passed takes itself out of the count while another one is in it. When
//     it is the only one, the event is set for it or about to be: it takes the lock.
class tSharedLock {
 public:
  VEX_MODULE_MEMORY

  // A free lock without handles. `name` is null for a private one and valid otherwise.
  tSharedLock(char const* name, tSyncDescriptor const& descriptor);
  tSharedLock(tSharedLock const&) = delete;
  tSharedLock& operator=(tSharedLock const&) = delete;

  // As iSync.
  i32 acquire(u32 timeoutMilliseconds);
  i32 release();

  // Whether any thread owns it or waits for it.
  bool isInUse() const { return __atomic_load_n(&contenders, __ATOMIC_RELAXED) != 0; }
  bool isOwnedByCaller() const { return getOwner() == getThreadId(); }

  // Whether an open with these arguments means this lock. Never true for a private one.
  bool isNamed(char const* name, tSyncDescriptor const& descriptor) const;

  void copyName(char (&to)[kSyncMaximumNameLength + 1]) const;

  // Open handles, counted by the table under its guard.
  u32 handleCount = 0;

 private:
  static constexpr u32 kNobody = 0;

  // Only a thread itself writes its id, so a thread reads reliably whether it is the owner, and
  // nothing else about the value.
  u32 getOwner() const { return __atomic_load_n(&owner, __ATOMIC_RELAXED); }
  void setOwner(u32 threadId) { __atomic_store_n(&owner, threadId, __ATOMIC_RELAXED); }

  // As tThreadUtility, with a call less: it is asked twice each time that a lock is used. No thread
  // that uses one is a processor's idle thread.
  static u32 getThreadId() {
    return static_cast<u32>(reinterpret_cast<uintptr_t>(PsGetCurrentThreadId()));
  }

  i32 acquireAgain();
  bool takeIfFree();
  i32 await(u32 timeoutMilliseconds);
  bool withdraw();
  void giveUp();
  void wakeOne();

  u32 contenders = 0;
  u32 owner = kNobody;
  u32 depth = 0;  // the owner's
  u32 kind;
  u32 token[2];
  KEVENT event;
  char name[kSyncMaximumNameLength + 1];
};

inline i32 tSharedLock::acquire(u32 timeoutMilliseconds) {
  if (KeGetCurrentIrql() > APC_LEVEL) return kStatusSyncIrqlTooHigh;
  u32 const threadId = getThreadId();
  if (getOwner() == threadId) return acquireAgain();
  KeEnterCriticalRegion();
  if (!takeIfFree()) {
    i32 const status = await(timeoutMilliseconds);
    if (status < 0) {
      KeLeaveCriticalRegion();
      return status;
    }
  }
  setOwner(threadId);
  depth = 1;
  return 0;
}

inline i32 tSharedLock::release() {
  if (!isOwnedByCaller()) return kStatusSyncNotOwner;
  if (--depth != 0) return 0;
  setOwner(kNobody);
  giveUp();
  KeLeaveCriticalRegion();
  return 0;
}

inline bool tSharedLock::takeIfFree() {
  u32 none = 0;
  return __atomic_compare_exchange_n(&contenders, &none, 1, false, __ATOMIC_ACQUIRE,
                                     __ATOMIC_RELAXED);
}

// When nobody is left in the count, the lock may be gone the next moment.
inline void tSharedLock::giveUp() {
  if (__atomic_sub_fetch(&contenders, 1, __ATOMIC_RELEASE) != 0) wakeOne();
}
