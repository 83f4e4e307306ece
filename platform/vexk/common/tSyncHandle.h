#pragma once

// What one syncOpen gave out.

#include "tSharedLock.h"

class tSyncHandle final : public iSync {
 public:
  VEX_MODULE_MEMORY

  explicit tSyncHandle(tSharedLock& sharedLock) : lock(sharedLock) {}

  i32 acquire(u32 timeoutMilliseconds) override { return lock.acquire(timeoutMilliseconds); }
  i32 release() override { return lock.release(); }

  tSharedLock& getLock() const { return lock; }

  // Link of the table.
  tSyncHandle* next = nullptr;

 private:
  tSharedLock& lock;
};
