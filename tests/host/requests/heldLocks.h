#pragma once

// In the program that includes this, once, a thread gives back only locks that it holds, and waits
// only with those: anything else ends the program. The sanitizers have functions of their own.

#include <pthread.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define OXDIAG_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define OXDIAG_TEST_SANITIZED 1
#endif
#endif

#ifndef OXDIAG_TEST_SANITIZED

#include <dlfcn.h>
#include <stdio.h>

namespace nHeldLocks {

template <class tFunction>
tFunction* next(char const* name) {
  return reinterpret_cast<tFunction*>(dlsym(RTLD_NEXT, name));
}

inline void demandHeld(pthread_mutex_t const* lock, char const* what) {
  if (lock->__data.__owner == static_cast<int>(syscall(SYS_gettid))) return;
  fprintf(stderr, "%s of a lock that the thread does not hold\n", what);
  abort();
}

}  // namespace nHeldLocks

extern "C" int pthread_mutex_unlock(pthread_mutex_t* lock) noexcept {
  static auto* const unlock = nHeldLocks::next<int(pthread_mutex_t*)>("pthread_mutex_unlock");
  nHeldLocks::demandHeld(lock, "the return");
  return unlock(lock);
}

#endif
