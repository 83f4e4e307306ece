#pragma once

#include "ntos/dispatcherHeader.h"

// An event: threads wait for it with KeWaitForSingleObject until somebody sets it.
struct KEVENT {
  DISPATCHER_HEADER Header;
};
static_assert(sizeof(KEVENT) == 24);

enum EVENT_TYPE : i32 {
  NotificationEvent = 0,     // stays set, and lets every waiter go, until it is cleared
  SynchronizationEvent = 1,  // lets one waiter go and clears itself
};

extern "C" {

// Makes `event`, in non-paged memory of the caller, ready; `state` is whether it starts set.
// Any IRQL.
NTOS_IMPORT void KeInitializeEvent(KEVENT* event, EVENT_TYPE type, BOOLEAN state);

// Sets the event; returns whether it was set before (0: it was not). `increment` is the priority
// boost of the waiters (0). `wait` is 0.
// IRQL <= DISPATCH_LEVEL. Thread safe.
NTOS_IMPORT i32 KeSetEvent(KEVENT* event, i32 increment, BOOLEAN wait);

// Clears the event. KeResetEvent returns whether it was set before.
// IRQL <= DISPATCH_LEVEL. Thread safe.
NTOS_IMPORT void KeClearEvent(KEVENT* event);
NTOS_IMPORT i32 KeResetEvent(KEVENT* event);
}
