#pragma once

// Help for the tests of the platform layer.

#include "ntoshost/executive.h"
#include "vexk/module.h"
#include "vexk/sync.h"

// The platform layer, running for the length of a test; at the end nothing may be left in the pool.
class tRunningPlatform {
 public:
  tRunningPlatform() { vexkInitialize(); }
  ~tRunningPlatform() {
    vexkUnload();
    ntoshost::requireNoOutstanding("the test");
  }
  tRunningPlatform(tRunningPlatform const&) = delete;
  tRunningPlatform& operator=(tRunningPlatform const&) = delete;
};

// A handle that is closed at the end of its scope.
class tOpenLock {
 public:
  explicit tOpenLock(char const* name, tSyncDescriptor const& descriptor = tSyncDescriptor{})
      : sync(syncOpen(name, descriptor, status)) {}
  ~tOpenLock() { syncClose(sync); }
  tOpenLock(tOpenLock const&) = delete;
  tOpenLock& operator=(tOpenLock const&) = delete;

  iSync* operator->() const { return sync; }

  i32 status = 0;
  iSync* sync;
};
