#include "suspension.h"

#include <pthread.h>
#include <time.h>

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "ntoshost/schedule.h"
#include "ntoshost/thread.h"
#include "ntoshost/violation.h"
#include "ownLock.h"

namespace ntoshost {

constinit thread_local SuspensionRequest g_suspension = {};

namespace {

constexpr u64 kNanosecondsPerMillisecond = 1'000'000;
constexpr u64 kNanosecondsPerSecond = 1'000'000'000;
constexpr u32 kAMoment = 5;  // milliseconds

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit pthread_cond_t g_changed = PTHREAD_COND_INITIALIZER;
constinit u64 g_resumes = 0;
constinit u32 g_suspended = 0;
constinit u32 g_patience = 30'000;  // milliseconds

bool mayBeSuspended() {
  return KeGetCurrentIrql() == PASSIVE_LEVEL && KeAreApcsDisabled() == 0;
}

timespec after(u32 milliseconds) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  u64 const nanoseconds = static_cast<u64>(now.tv_nsec) + milliseconds * kNanosecondsPerMillisecond;
  return {now.tv_sec + static_cast<time_t>(nanoseconds / kNanosecondsPerSecond),
          static_cast<long>(nanoseconds % kNanosecondsPerSecond)};
}

void sleepUntilResumed() {
  pthread_mutex_lock(&g_lock);
  u32 const patience = g_patience;
  timespec const end = after(patience);
  u64 const resumes = g_resumes;
  ++g_suspended;
  pthread_cond_broadcast(&g_changed);
  while (g_resumes == resumes) {
    if (pthread_cond_timedwait(&g_changed, &g_lock, &end) == 0) continue;
    violation(
        "Nobody has resumed a suspended thread within %u milliseconds: whoever should waits for "
        "it.",
        patience);
  }
  --g_suspended;
  pthread_mutex_unlock(&g_lock);
}

struct Work {
  u64 n;
  void (*run)(void*);
  void* argument;
  bool wasAsked;
  bool isDone;
};

void* runWork(void* given) {
  Work& work = *static_cast<Work*>(given);
  suspendAtCall(work.n);
  work.run(work.argument);
  work.wasAsked = wasSuspensionAsked();
  __atomic_store_n(&work.isDone, true, __ATOMIC_RELEASE);
  return nullptr;
}

}  // namespace

void suspendIfAllowed() {
  if (!mayBeSuspended()) return;
  g_suspension.isPending = false;
  sleepUntilResumed();
}

void countCall() {
  if (g_ownLocks != 0) return;
  schedulePoint();
  if (g_suspension.callsLeft != 0 && --g_suspension.callsLeft == 0) g_suspension.isPending = true;
  takeSuspension();
}

void suspendAtCall(u64 n) {
  g_suspension = {n, false};
}

bool wasSuspensionAsked() {
  return g_suspension.callsLeft == 0;
}

bool awaitSuspended(u32 milliseconds) {
  timespec const end = after(milliseconds);
  pthread_mutex_lock(&g_lock);
  while (g_suspended == 0 && pthread_cond_timedwait(&g_changed, &g_lock, &end) == 0) {
  }
  bool const isSuspended = g_suspended != 0;
  pthread_mutex_unlock(&g_lock);
  return isSuspended;
}

void resumeThreads() {
  pthread_mutex_lock(&g_lock);
  ++g_resumes;
  pthread_cond_broadcast(&g_changed);
  pthread_mutex_unlock(&g_lock);
}

void setSuspensionPatience(u32 milliseconds) {
  pthread_mutex_lock(&g_lock);
  g_patience = milliseconds;
  pthread_mutex_unlock(&g_lock);
}

bool suspendAt(u64 n, void (*work)(void*), void* workArgument, void (*meanwhile)(void*),
               void* meanwhileArgument) {
  Work own = {n, work, workArgument, false, false};
  pthread_t thread;
  if (pthread_create(&thread, nullptr, runWork, &own) != 0) {
    violation("The machine has no thread for the work that is to be suspended.");
  }
  bool isFirst = true;
  while (!__atomic_load_n(&own.isDone, __ATOMIC_ACQUIRE)) {
    if (!awaitSuspended(kAMoment)) continue;
    if (isFirst) meanwhile(meanwhileArgument);
    isFirst = false;
    resumeThreads();
  }
  pthread_join(thread, nullptr);
  return own.wasAsked;
}

}  // namespace ntoshost
