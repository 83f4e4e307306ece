#pragma once

#include <errno.h>
#include <pthread.h>

#include "ntoshost/faults.h"

// pthread_create, which a test can make fail.
inline int startThread(pthread_t& thread, void* (*routine)(void*), void* argument) {
  if (ntoshost::injectFault(ntoshost::kFaultThread)) return EAGAIN;
  return pthread_create(&thread, nullptr, routine, argument);
}
