#include "ntos/fastMutex.h"

#include "currentThread.h"
#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "wait/dispatcher.h"
#include "wait/heldLocks.h"
#include "wait/parking.h"

namespace ntoshost {
namespace {

constexpr i32 kFree = 1;
constexpr i32 kTaken = 0;

KTHREAD* readOwner(FAST_MUTEX const& mutex) {
  return __atomic_load_n(&mutex.Owner, __ATOMIC_RELAXED);
}

void writeOwner(FAST_MUTEX& mutex, KTHREAD* owner) {
  __atomic_store_n(&mutex.Owner, owner, __ATOMIC_RELAXED);
}

void requireInitialised(FAST_MUTEX const& mutex, char const* call) {
  DISPATCHER_HEADER const& header = mutex.Event.Header;
  if (header.Type == EventSynchronizationObject && header.Size == sizeof(KEVENT) / sizeof(u32)) {
    return;
  }
  violation("%s was given something at %p that is no initialised fast mutex.", call,
            static_cast<void const*>(&mutex));
}

bool tryTake(FAST_MUTEX& mutex) {
  i32 expected = kFree;
  return __atomic_compare_exchange_n(&mutex.Count, &expected, kTaken, false, __ATOMIC_SEQ_CST,
                                     __ATOMIC_RELAXED);
}

void take(FAST_MUTEX& mutex) {
  if (tryTake(mutex)) return;
  if (readOwner(mutex) == currentThread()) {
    violation(
        "ExAcquireFastMutex: the thread already owns the fast mutex at %p and would wait for "
        "itself.",
        static_cast<void*>(&mutex));
  }
  __atomic_add_fetch(&mutex.Contention, 1, __ATOMIC_RELAXED);
  Deadline const never(nullptr);
  do {
    parkWhile(&mutex.Count, kTaken, never);
  } while (!tryTake(mutex));
}

}  // namespace
}  // namespace ntoshost

void ExAcquireFastMutex(FAST_MUTEX* mutex) {
  ntoshost::requireIrqlAtMost(APC_LEVEL, "ExAcquireFastMutex");
  ntoshost::requireInitialised(*mutex, "ExAcquireFastMutex");
  KIRQL previous;
  KeRaiseIrql(APC_LEVEL, &previous);
  ntoshost::take(*mutex);
  ntoshost::writeOwner(*mutex, ntoshost::currentThread());
  mutex->OldIrql = previous;
  ntoshost::noteLockTaken(mutex, ntoshost::LockKind::fastMutex);
}

void ExReleaseFastMutex(FAST_MUTEX* mutex) {
  ntoshost::requireInitialised(*mutex, "ExReleaseFastMutex");
  if (ntoshost::readOwner(*mutex) != ntoshost::currentThread()) {
    ntoshost::violation(
        "ExReleaseFastMutex: the fast mutex at %p is not owned by the calling thread.",
        static_cast<void*>(mutex));
  }
  if (KeGetCurrentIrql() != APC_LEVEL) {
    ntoshost::violation(
        "ExReleaseFastMutex was called at IRQL %u (%s); it must be at IRQL 1 "
        "(APC_LEVEL), where ExAcquireFastMutex left it.",
        KeGetCurrentIrql(), ntoshost::irqlName(KeGetCurrentIrql()));
  }
  KIRQL const previous = static_cast<KIRQL>(mutex->OldIrql);
  ntoshost::noteLockReleased(mutex);
  ntoshost::writeOwner(*mutex, nullptr);
  __atomic_store_n(&mutex->Count, ntoshost::kFree, __ATOMIC_SEQ_CST);
  ntoshost::wakeOneParked(&mutex->Count);
  KeLowerIrql(previous);
}
