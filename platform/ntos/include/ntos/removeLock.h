#pragma once

#include "ntos/event.h"
#include "ntos/status.h"

// Counts the requests that use a device, so that whoever takes the device away can wait for them.
// Lives in non-paged memory of its owner, usually in a device extension.
struct IO_REMOVE_LOCK {
  struct {
    BOOLEAN Removed;
    BOOLEAN Reserved[3];
    i32 IoCount;  // 1 and one for each acquisition
    KEVENT RemoveEvent;
  } Common;
};
static_assert(sizeof(IO_REMOVE_LOCK) == 32);

extern "C" {

// Makes `lock` ready. `maxLockedMinutes` and `highWatermark` are limits that only a checked kernel
// looks at, 0 for none; `size` is sizeof(IO_REMOVE_LOCK). PASSIVE_LEVEL.
NTOS_IMPORT void IoInitializeRemoveLockEx(IO_REMOVE_LOCK* lock, u32 allocateTag,
                                          u32 maxLockedMinutes, u32 highWatermark, u32 size);

// Enters: STATUS_SUCCESS, or STATUS_DELETE_PENDING when the lock was drained. `tag` is what the
// matching release gives; `file` and `line` are for a checked kernel. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT NTSTATUS IoAcquireRemoveLockEx(IO_REMOVE_LOCK* lock, void* tag, char const* file,
                                           u32 line, u32 size);

// Leaves. IRQL <= DISPATCH_LEVEL.
NTOS_IMPORT void IoReleaseRemoveLockEx(IO_REMOVE_LOCK* lock, void* tag, u32 size);

// Leaves, lets nobody in any more and waits until everyone has left: drains the lock. The caller
// has entered with the same tag. PASSIVE_LEVEL.
NTOS_IMPORT void IoReleaseRemoveLockAndWaitEx(IO_REMOVE_LOCK* lock, void* tag, u32 size);
}

inline void IoInitializeRemoveLock(IO_REMOVE_LOCK* lock, u32 allocateTag) {
  IoInitializeRemoveLockEx(lock, allocateTag, 0, 0, sizeof(IO_REMOVE_LOCK));
}
inline NTSTATUS IoAcquireRemoveLock(IO_REMOVE_LOCK* lock, void* tag) {
  return IoAcquireRemoveLockEx(lock, tag, "", 1, sizeof(IO_REMOVE_LOCK));
}
inline void IoReleaseRemoveLock(IO_REMOVE_LOCK* lock, void* tag) {
  IoReleaseRemoveLockEx(lock, tag, sizeof(IO_REMOVE_LOCK));
}
inline void IoReleaseRemoveLockAndWait(IO_REMOVE_LOCK* lock, void* tag) {
  IoReleaseRemoveLockAndWaitEx(lock, tag, sizeof(IO_REMOVE_LOCK));
}
