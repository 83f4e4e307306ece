#include "io/removeLocks.h"

#include <pthread.h>
#include <stdlib.h>

#include "irqlCheck.h"
#include "ntos/sync.h"
#include "ntoshost/violation.h"
#include "ownLock.h"
#include "wait/heldLocks.h"

// Beside the count that lies in the lock itself, the executive keeps the tags it was entered with.

namespace ntoshost {
namespace {

constexpr char kAcquire[] = "IoAcquireRemoveLock";
constexpr char kRelease[] = "IoReleaseRemoveLock";
constexpr char kDrain[] = "IoReleaseRemoveLockAndWait";

struct Entry {
  Entry* next;
  void* tag;
};

struct LockRecord {
  LockRecord* next;
  IO_REMOVE_LOCK* lock;
  Entry* entries;
};

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit LockRecord* g_records = nullptr;

class RecordsLock {
 public:
  RecordsLock() { lockOwn(g_lock); }
  ~RecordsLock() { unlockOwn(g_lock); }
  RecordsLock(RecordsLock const&) = delete;
  RecordsLock& operator=(RecordsLock const&) = delete;
};

LockRecord* find(IO_REMOVE_LOCK const* lock) {
  LockRecord* record = g_records;
  while (record != nullptr && record->lock != lock) record = record->next;
  return record;
}

void dropEntries(LockRecord& record) {
  while (record.entries != nullptr) {
    Entry* const entry = record.entries;
    record.entries = entry->next;
    free(entry);
  }
}

void* takeMemory(size_t size) {
  void* const memory = calloc(1, size);
  if (memory == nullptr) violation("The machine has no memory for the list of remove locks.");
  return memory;
}

void remember(IO_REMOVE_LOCK* lock) {
  LockRecord* record = find(lock);
  if (record != nullptr) return dropEntries(*record);
  record = static_cast<LockRecord*>(takeMemory(sizeof(LockRecord)));
  record->lock = lock;
  record->next = g_records;
  g_records = record;
}

LockRecord& requireLock(IO_REMOVE_LOCK const* lock, u32 size, char const* call) {
  LockRecord* const record = find(lock);
  if (record == nullptr || size != sizeof(IO_REMOVE_LOCK)) {
    violation("%s was given something at %p that is no initialised remove lock.", call,
              static_cast<void const*>(lock));
  }
  return *record;
}

void enter(LockRecord& record, void* tag) {
  Entry* const entry = static_cast<Entry*>(takeMemory(sizeof(Entry)));
  entry->tag = tag;
  entry->next = record.entries;
  record.entries = entry;
  __atomic_add_fetch(&record.lock->Common.IoCount, 1, __ATOMIC_SEQ_CST);
}

void leave(LockRecord& record, void* tag, char const* call) {
  Entry** link = &record.entries;
  while (*link != nullptr && (*link)->tag != tag) link = &(*link)->next;
  if (*link == nullptr) {
    violation("%s: nobody has entered the remove lock at %p with the tag %p.", call,
              static_cast<void*>(record.lock), tag);
  }
  Entry* const entry = *link;
  *link = entry->next;
  free(entry);
}

// True when that was the last.
bool countDown(IO_REMOVE_LOCK* lock) {
  return __atomic_sub_fetch(&lock->Common.IoCount, 1, __ATOMIC_SEQ_CST) == 0;
}

bool isDrained(IO_REMOVE_LOCK const* lock) {
  return __atomic_load_n(&lock->Common.Removed, __ATOMIC_SEQ_CST) != 0;
}

// Leaves and lets nobody in any more. True when somebody is still in.
bool shut(IO_REMOVE_LOCK* lock, void* tag, u32 size) {
  RecordsLock const guard;
  LockRecord& record = requireLock(lock, size, kDrain);
  if (isDrained(lock)) {
    violation("%s: the remove lock at %p was drained before.", kDrain, static_cast<void*>(lock));
  }
  leave(record, tag, kDrain);
  __atomic_store_n(&lock->Common.Removed, BOOLEAN{1}, __ATOMIC_SEQ_CST);
  countDown(lock);
  return !countDown(lock);
}

bool isWithin(LockRecord const& record, void const* bytes, size_t size) {
  return reinterpret_cast<uintptr_t>(record.lock) - reinterpret_cast<uintptr_t>(bytes) < size;
}

}  // namespace

void const* forgetRemoveLocks(void const* bytes, size_t size) {
  RecordsLock const guard;
  for (LockRecord** link = &g_records; *link != nullptr;) {
    LockRecord* const record = *link;
    if (!isWithin(*record, bytes, size)) {
      link = &record->next;
      continue;
    }
    if (record->entries != nullptr) return record->lock;
    *link = record->next;
    free(record);
  }
  return nullptr;
}

}  // namespace ntoshost

void IoInitializeRemoveLockEx(IO_REMOVE_LOCK* lock, u32, u32, u32, u32 size) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "IoInitializeRemoveLock");
  if (size != sizeof(IO_REMOVE_LOCK)) {
    ntoshost::violation("IoInitializeRemoveLock was given a lock of %u bytes; it has %zu.", size,
                        sizeof(IO_REMOVE_LOCK));
  }
  lock->Common.Removed = 0;
  lock->Common.IoCount = 1;
  KeInitializeEvent(&lock->Common.RemoveEvent, SynchronizationEvent, 0);
  ntoshost::RecordsLock const guard;
  ntoshost::remember(lock);
}

NTSTATUS IoAcquireRemoveLockEx(IO_REMOVE_LOCK* lock, void* tag, char const*, u32, u32 size) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, ntoshost::kAcquire);
  ntoshost::RecordsLock const guard;
  ntoshost::LockRecord& record = ntoshost::requireLock(lock, size, ntoshost::kAcquire);
  if (ntoshost::isDrained(lock)) return STATUS_DELETE_PENDING;
  ntoshost::enter(record, tag);
  return STATUS_SUCCESS;
}

// The last one out may find the lock gone once the event is set, so that is done under the guard.
void IoReleaseRemoveLockEx(IO_REMOVE_LOCK* lock, void* tag, u32 size) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, ntoshost::kRelease);
  ntoshost::RecordsLock const guard;
  ntoshost::leave(ntoshost::requireLock(lock, size, ntoshost::kRelease), tag, ntoshost::kRelease);
  if (ntoshost::countDown(lock)) KeSetEvent(&lock->Common.RemoveEvent, 0, 0);
}

void IoReleaseRemoveLockAndWaitEx(IO_REMOVE_LOCK* lock, void* tag, u32 size) {
  ntoshost::requireNoFastMutex(ntoshost::kDrain);
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, ntoshost::kDrain);
  if (!ntoshost::shut(lock, tag, size)) return;
  KeWaitForSingleObject(&lock->Common.RemoveEvent, Executive, KernelMode, 0, nullptr);
}
