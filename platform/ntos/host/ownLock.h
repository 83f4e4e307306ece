#pragma once

#include <pthread.h>

#include "ntos/types.h"

namespace ntoshost {

// The executive's own locks, which are held for a moment and call nobody else's code. A thread that
// has one is not suspended, and no schedule lets another thread go on: that one might ask for it.

extern constinit thread_local u32 g_ownLocks __attribute__((tls_model("initial-exec")));

inline void lockOwn(pthread_mutex_t& mutex) {
  pthread_mutex_lock(&mutex);
  ++g_ownLocks;
}

inline void unlockOwn(pthread_mutex_t& mutex) {
  --g_ownLocks;
  pthread_mutex_unlock(&mutex);
}

}  // namespace ntoshost
