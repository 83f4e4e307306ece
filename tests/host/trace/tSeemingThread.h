#pragma once

#include "ntoshost/thread.h"

// What a thread that seems to have `id` sees, until the object goes.
class tSeemingThread {
 public:
  explicit tSeemingThread(u64 id) { ntoshost::overrideCurrentThreadId(id); }
  ~tSeemingThread() { ntoshost::overrideCurrentThreadId(0); }
  tSeemingThread(tSeemingThread const&) = delete;
  tSeemingThread& operator=(tSeemingThread const&) = delete;
};
