#pragma once

#include <pthread.h>
#include <time.h>

// A lock of the host's own threads; they are no part of the kernel that the executive plays.
class tThreadLock {
 public:
  constexpr tThreadLock() = default;

  void take() { pthread_mutex_lock(&mutex); }
  void giveBack() { pthread_mutex_unlock(&mutex); }

  // Gives the lock, which the caller has taken, back until somebody signals `changed` or, by the
  // monotonic clock, the moment is there.
  void wait(pthread_cond_t& changed) { pthread_cond_wait(&changed, &mutex); }
  void wait(pthread_cond_t& changed, timespec const& moment) {
    pthread_cond_clockwait(&changed, &mutex, CLOCK_MONOTONIC, &moment);
  }

  // Holds a lock for a scope.
  class tGuard {
   public:
    explicit tGuard(tThreadLock& held) : lock(held) { lock.take(); }
    ~tGuard() { lock.giveBack(); }
    tGuard(tGuard const&) = delete;
    tGuard& operator=(tGuard const&) = delete;

   private:
    tThreadLock& lock;
  };

 private:
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
};
