#include "wait/heldLocks.h"

#include <pthread.h>

#include "io/currentDriver.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

constexpr u32 kCapacity = 64;

// Written by its thread alone; others may look.
struct HeldLocks {
  HeldLocks* next;
  bool isKnown;
  u32 regions;
  u32 count;
  void const* locks[kCapacity];
  LockKind kinds[kCapacity];
  DRIVER_OBJECT const* drivers[kCapacity];
};

constinit thread_local HeldLocks g_held = {};
constinit pthread_mutex_t g_threadsLock = PTHREAD_MUTEX_INITIALIZER;
constinit HeldLocks* g_threads = nullptr;
constinit pthread_once_t g_keyOnce = PTHREAD_ONCE_INIT;
constinit pthread_key_t g_key = 0;

void const* lockAt(HeldLocks const& held, u32 index) {
  return __atomic_load_n(&held.locks[index], __ATOMIC_RELAXED);
}

void setLock(HeldLocks& held, u32 index, void const* lock) {
  __atomic_store_n(&held.locks[index], lock, __ATOMIC_RELAXED);
}

DRIVER_OBJECT const* driverAt(HeldLocks const& held, u32 index) {
  return __atomic_load_n(&held.drivers[index], __ATOMIC_RELAXED);
}

void setDriver(HeldLocks& held, u32 index, DRIVER_OBJECT const* driver) {
  __atomic_store_n(&held.drivers[index], driver, __ATOMIC_RELAXED);
}

char const* nameOf(LockKind kind) {
  return kind == LockKind::fastMutex ? "fast mutex" : "mutex";
}

void forgetThread(void* thread) {
  HeldLocks& held = *static_cast<HeldLocks*>(thread);
  if (held.count != 0) {
    violation("A thread ended while it owned the %s at %p.", nameOf(held.kinds[held.count - 1]),
              lockAt(held, held.count - 1));
  }
  if (held.regions != 0) violation("A thread ended within a critical region.");
  pthread_mutex_lock(&g_threadsLock);
  HeldLocks** link = &g_threads;
  while (*link != &held) link = &(*link)->next;
  *link = held.next;
  pthread_mutex_unlock(&g_threadsLock);
  held.isKnown = false;
}

void makeKey() {
  pthread_key_create(&g_key, forgetThread);
}

void rememberThread() {
  pthread_once(&g_keyOnce, makeKey);
  pthread_setspecific(g_key, &g_held);
  pthread_mutex_lock(&g_threadsLock);
  g_held.next = g_threads;
  g_threads = &g_held;
  pthread_mutex_unlock(&g_threadsLock);
  g_held.isKnown = true;
}

void const* lockWithin(HeldLocks const& held, uintptr_t start, size_t size) {
  for (u32 i = 0; i < kCapacity; ++i) {
    void const* const lock = lockAt(held, i);
    if (lock != nullptr && reinterpret_cast<uintptr_t>(lock) - start < size) return lock;
  }
  return nullptr;
}

void const* lockTakenWithin(HeldLocks const& held, DRIVER_OBJECT const* driver) {
  for (u32 i = 0; i < kCapacity; ++i) {
    void const* const lock = lockAt(held, i);
    if (lock != nullptr && driverAt(held, i) == driver) return lock;
  }
  return nullptr;
}

// What `find` finds in the account of one of the threads, or null.
template <class Find>
void const* findInThreads(Find find) {
  pthread_mutex_lock(&g_threadsLock);
  void const* found = nullptr;
  for (HeldLocks const* held = g_threads; held != nullptr && found == nullptr; held = held->next) {
    found = find(*held);
  }
  pthread_mutex_unlock(&g_threadsLock);
  return found;
}

}  // namespace

void noteLockTaken(void const* lock, LockKind kind) {
  if (!g_held.isKnown) rememberThread();
  if (g_held.count == kCapacity) {
    violation("A thread owns more than %u mutexes; the one at %p is too many.", kCapacity, lock);
  }
  g_held.kinds[g_held.count] = kind;
  setDriver(g_held, g_held.count, currentDriver());
  setLock(g_held, g_held.count++, lock);
}

void noteLockReleased(void const* lock) {
  u32 index = 0;
  while (index < g_held.count && lockAt(g_held, index) != lock) ++index;
  if (index == g_held.count) return;
  u32 const last = --g_held.count;
  for (; index < last; ++index) {
    setLock(g_held, index, lockAt(g_held, index + 1));
    g_held.kinds[index] = g_held.kinds[index + 1];
    setDriver(g_held, index, driverAt(g_held, index + 1));
  }
  setLock(g_held, last, nullptr);
}

void noteRegionEntered() {
  if (!g_held.isKnown) rememberThread();
  ++g_held.regions;
}

bool noteRegionLeft() {
  if (g_held.regions == 0) return false;
  --g_held.regions;
  return true;
}

void const* ownedFastMutex() {
  for (u32 i = g_held.count; i > 0; --i) {
    if (g_held.kinds[i - 1] == LockKind::fastMutex) return lockAt(g_held, i - 1);
  }
  return nullptr;
}

u32 countOwnedLocks() {
  return g_held.count;
}

void const* lastOwnedLock() {
  return g_held.count == 0 ? nullptr : lockAt(g_held, g_held.count - 1);
}

void const* ownedLockWithin(void const* bytes, size_t size) {
  return findInThreads([&](HeldLocks const& held) {
    return lockWithin(held, reinterpret_cast<uintptr_t>(bytes), size);
  });
}

void const* lockTakenWithin(DRIVER_OBJECT const* driver) {
  return findInThreads([&](HeldLocks const& held) { return lockTakenWithin(held, driver); });
}

void requireNoFastMutex(char const* call) {
  void const* const mutex = ownedFastMutex();
  if (mutex == nullptr) return;
  violation("%s was called by a thread that owns the fast mutex at %p.", call, mutex);
}

}  // namespace ntoshost
