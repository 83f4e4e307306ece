#pragma once

#include "ntos/types.h"

struct _DRIVER_OBJECT;
using DRIVER_OBJECT = _DRIVER_OBJECT;

namespace ntoshost {

// Which fast mutexes and kernel mutexes each thread owns, and how many critical regions it is in. A
// thread that ends while it owns one or is within one stops the program, as does one that owns more
// than 64. The plain executive keeps no account: there nobody owns anything.

enum class LockKind : u8 { fastMutex, mutex };

void noteLockTaken(void const* lock, LockKind kind);
void noteLockReleased(void const* lock);

// The strict executive alone has these two. The second is false when the thread is in no region.
void noteRegionEntered();
bool noteRegionLeft();

// A fast mutex that the calling thread owns, or null.
void const* ownedFastMutex();

// How many locks the calling thread owns, and the one that it has taken last.
u32 countOwnedLocks();
void const* lastOwnedLock();

// A lock in these bytes that any thread owns, or null.
void const* ownedLockWithin(void const* bytes, size_t size);

// A lock that a thread took while it ran this driver and still owns, or null.
void const* lockTakenWithin(DRIVER_OBJECT const* driver);

// Stops the program when the calling thread owns a fast mutex. `call` is what it does meanwhile.
void requireNoFastMutex(char const* call);

}  // namespace ntoshost
