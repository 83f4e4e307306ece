#pragma once

// The lock behind one or more handles.

#include "ntos/sync.h"
#include "vexk/memory.h"
#include "vexk/sync.h"

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

  bool isOwned() const { return getOwner() != kNobody; }
  bool isOwnedByCaller() const;

  // Whether an open with these arguments means this lock. Never true for a private one.
  bool isNamed(char const* name, tSyncDescriptor const& descriptor) const;

  // Open handles, counted by the table under its guard.
  u32 handleCount = 0;

 private:
  static constexpr u32 kNobody = 0;

  u32 getOwner() const { return __atomic_load_n(&owner, __ATOMIC_RELAXED); }
  void setOwner(u32 threadId) { __atomic_store_n(&owner, threadId, __ATOMIC_RELAXED); }

  // The owner is kept here too, because the kernel stops the machine when a thread releases what it
  // does not own. Only the thread itself writes its id, so a thread reads reliably whether it is
  // the owner, and nothing else about the value.
  u32 owner = kNobody;
  u32 depth = 0;
  KMUTEX mutex;
  u32 kind;
  u32 token[2];
  char name[kSyncMaximumNameLength + 1];
};
