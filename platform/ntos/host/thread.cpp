#include "ntos/thread.h"

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include "currentThread.h"
#include "ntoshost/thread.h"
#include "ntoshost/userMemory.h"

namespace {

constinit u64 g_threads = 0;
constinit thread_local u64 g_thread = 0;
constinit thread_local u64 g_overriddenId = 0;
constinit pthread_once_t g_forkOnce = PTHREAD_ONCE_INIT;
constinit char g_userProcessObject = 0;

HANDLE handleOf(u64 number) {
  return reinterpret_cast<HANDLE>(number);
}

// The thread that lives on in the child of a fork has a new id there.
void forgetRealId() {
  ntoshost::g_words.id = g_overriddenId;
}
void watchForks() {
  pthread_atfork(nullptr, nullptr, forgetRealId);
}

}  // namespace

namespace ntoshost {

KTHREAD* currentThread() {
  if (g_thread == 0) g_thread = __atomic_add_fetch(&g_threads, 1, __ATOMIC_RELAXED);
  return reinterpret_cast<KTHREAD*>(g_thread * 16);
}

u64 findThreadId() {
  pthread_once(&g_forkOnce, watchForks);
  g_words.id = static_cast<u64>(gettid());
  return g_words.id;
}

void overrideCurrentThreadId(u64 id) {
  g_overriddenId = id;
  g_words.id = id;
}

}  // namespace ntoshost

EPROCESS* PsGetCurrentProcess() {
  return reinterpret_cast<EPROCESS*>(&g_userProcessObject);
}

HANDLE PsGetCurrentProcessId() {
  return handleOf(static_cast<u64>(ntoshost::getUserProcess()));
}

u32 KeGetCurrentProcessorNumberEx(_PROCESSOR_NUMBER* /*number*/) {
  return static_cast<u32>(sched_getcpu());
}
