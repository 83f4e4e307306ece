#pragma once

// Locks that modules share by name.
//
// A lock is recursive and lies in non-paged memory. Taking and giving back one that nobody else
// wants is two atomic operations, without a wait of the kernel. It is private to the caller who
// opened it without a name, and shared by everyone who opens the same name (kind 1) or the same
// name and token (kind 3). Names of the two kinds do not meet, and case matters.
//
//     i32 status = 0;
//     iSync* lock = syncOpen("nCOMPONENT::tThing::_mutex", tSyncDescriptor{}, status);
//     if (lock != nullptr) {
//       lock->acquire(kSyncWaitForever);
//       ...
//       lock->release();
//       syncClose(lock);
//     }
//
// Every syncOpen gives a handle of its own, closed by one syncClose; the lock lives until the last
// handle on it is closed. Handles may be used by any thread.

#include "compiler/types.h"
#include "vexk/api.h"

constexpr u32 kSyncKindMutex = 1;       // private without name, shared by name
constexpr u32 kSyncKindTokenMutex = 3;  // shared by name and token

constexpr u32 kSyncAccessSynchronize = 0x100000;  // the one access right that a lock needs
constexpr u32 kSyncFlagLongLived = 4;             // tMemAllocationFlags; locks are never paged
constexpr u32 kSyncWaitForever = 0xFFFFFFFF;      // milliseconds
constexpr u32 kSyncMaximumNameLength = 127;       // characters, without the terminator
constexpr u32 kSyncMaximumDepth = 0xFFFF;         // acquisitions by one thread, not yet released

// What lock to open.
struct tSyncDescriptor {
  u32 kind = kSyncKindMutex;
  u32 flags = kSyncFlagLongLived;  // 0 or kSyncFlagLongLived; both mean the same
  u32 access = kSyncAccessSynchronize;
  u32 token[2] = {0, 0};  // kind 3: low and high half; ignored for kind 1
};

// An open lock. IRQL <= APC_LEVEL for both operations.
class iSync {
 public:
  // Waits until the calling thread owns the lock, at most `timeoutMilliseconds`; 0 only tries,
  // kSyncWaitForever waits without limit. A thread that owns the lock already gets it once more and
  // must release it as often. Between acquire and release the thread is in a critical region: it
  // receives no normal kernel APCs, and it must not end there, which the kernel answers by stopping
  // the system and the host's executive by stopping the program. Threads that wait get the lock in
  // the order in which the kernel wakes them.
  // Returns 0 when the thread owns the lock, else it does not:
  //   kStatusSyncTimeout      the time passed
  //   kStatusSyncTooDeep      the thread owns it kSyncMaximumDepth times
  //   kStatusSyncIrqlTooHigh  called above APC_LEVEL; nothing was waited for
  //   kStatusSyncFailed       the kernel refused the wait
  [[nodiscard]] virtual i32 acquire(u32 timeoutMilliseconds) = 0;

  // Gives one acquisition back. Returns 0, or kStatusSyncNotOwner with nothing changed when the
  // calling thread does not own the lock.
  virtual i32 release() = 0;

 protected:
  ~iSync() = default;  // by syncClose
};

// Opens a lock; `name` null opens a private one. Returns the handle, or null with the reason in
// `status`, which is left alone on success:
//   kStatusBadArgument     unknown kind or flag; access without kSyncAccessSynchronize; a name that
//                          is empty or longer than kSyncMaximumNameLength; kind 3 without name
//   kStatusOutOfMemory     no memory for the lock or the handle; nothing was opened
//   kStatusNotInitialized  the platform layer is not running
// A negative `status` on entry is kept and nothing is opened. IRQL <= APC_LEVEL; any thread.
[[nodiscard]] VEX_API iSync* syncOpen(char const* name, tSyncDescriptor const& descriptor,
                                      i32& status);

// Closes a handle and clears the pointer; null is fine and does nothing. Returns 0, or
//   kStatusBadArgument  not an open handle (closed before through a copy of the pointer, for
//                       instance): nothing is touched but the pointer, which is cleared
//   kStatusSyncInUse    the calling thread owns the lock, or this is the last handle and another
//                       thread owns the lock or waits for it: handle and pointer stay as they are
// IRQL <= APC_LEVEL; any thread.
VEX_API i32 syncClose(iSync*& sync);

// Holds a lock for a scope. A null lock is fine and holds nothing.
class tSyncLock {
 public:
  // Waits as iSync::acquire.
  explicit tSyncLock(iSync* lock, u32 timeoutMilliseconds = kSyncWaitForever)
      : sync(lock), result(lock == nullptr ? 0 : lock->acquire(timeoutMilliseconds)) {}
  ~tSyncLock() {
    if (sync != nullptr && result >= 0) sync->release();
  }
  tSyncLock(tSyncLock const&) = delete;
  tSyncLock& operator=(tSyncLock const&) = delete;

  // What acquire returned; 0 for a null lock.
  i32 getStatus() const { return result; }

 private:
  iSync* sync;
  i32 result;
};
