#include "ntos/mutex.h"

#include "currentThread.h"
#include "irqlCheck.h"
#include "ntos/thread.h"
#include "ntoshost/violation.h"
#include "suspension.h"
#include "wait/dispatcher.h"
#include "wait/heldLocks.h"

namespace {

constexpr i32 kDeepestState = -0x7FFFFFFF;

KTHREAD* readOwner(KMUTEX const& mutex) {
  return __atomic_load_n(&mutex.OwnerThread, __ATOMIC_RELAXED);
}

void writeOwner(KMUTEX& mutex, KTHREAD* owner) {
  __atomic_store_n(&mutex.OwnerThread, owner, __ATOMIC_RELAXED);
}

}  // namespace

namespace ntoshost {

// The state is 1 when the mutex is free, and goes down by 1 each time it is taken.
bool tryTakeMutex(KMUTEX& mutex) {
  DISPATCHER_HEADER& header = mutex.Header;
  if (readOwner(mutex) == currentThread()) {
    i32 const state = readSignalState(header);
    if (state == kDeepestState) violation("A mutex was taken more often than it can count.");
    exchangeSignalState(header, state - 1);
    return true;
  }
  i32 expected = 1;
  if (!__atomic_compare_exchange_n(&header.SignalState, &expected, 0, false, __ATOMIC_SEQ_CST,
                                   __ATOMIC_RELAXED)) {
    return false;
  }
  writeOwner(mutex, currentThread());
  noteLockTaken(&mutex, LockKind::mutex);
  ++g_words.regions;
  return true;
}

}  // namespace ntoshost

void KeInitializeMutex(KMUTEX* mutex, u32) {
  ntoshost::requireIrqlAtMost(HIGH_LEVEL, "KeInitializeMutex");
  mutex->MutantListEntry = {&mutex->MutantListEntry, &mutex->MutantListEntry};
  mutex->Abandoned = 0;
  mutex->ApcDisable = 1;
  writeOwner(*mutex, nullptr);
  ntoshost::initializeHeader(mutex->Header, MutantObject, sizeof(KMUTEX), 1);
}

i32 KeReleaseMutex(KMUTEX* mutex, BOOLEAN wait) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "KeReleaseMutex");
  ntoshost::requireMutex(mutex->Header, "KeReleaseMutex");
  if (wait != 0) {
    ntoshost::violation("KeReleaseMutex was asked to release and wait in one; this is not done.");
  }
  if (readOwner(*mutex) != ntoshost::currentThread()) {
    ntoshost::violation("KeReleaseMutex: the mutex at %p is not owned by the calling thread.",
                        static_cast<void*>(mutex));
  }
  i32 const state = ntoshost::readSignalState(mutex->Header);
  if (state == 0) {
    ntoshost::noteLockReleased(mutex);
    writeOwner(*mutex, nullptr);
    --ntoshost::g_words.regions;
  }
  i32 const before = ntoshost::exchangeSignalState(mutex->Header, state + 1);
  ntoshost::takeSuspension();
  return before;
}
