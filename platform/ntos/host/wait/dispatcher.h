#pragma once

#include "ntos/dispatcherHeader.h"
#include "ntos/event.h"
#include "ntos/mutex.h"

namespace ntoshost {

// What the kinds of waitable objects have in common, over the fields of their true layout.

void initializeHeader(DISPATCHER_HEADER& header, KOBJECTS type, size_t objectSize, i32 state);

// Stop the program unless the header is that of an initialised event, mutex, or one of the two.
// `call` names the kernel call.
void requireEvent(DISPATCHER_HEADER const& header, char const* call);
void requireMutex(DISPATCHER_HEADER const& header, char const* call);
void requireWaitable(DISPATCHER_HEADER const& header, char const* call);

// Takes the object if it is signalled.
bool tryTakeEvent(KEVENT& event);
bool tryTakeMutex(KMUTEX& mutex);

i32 readSignalState(DISPATCHER_HEADER const& header);

// Sets the state and wakes who waits for it: everybody for a notification event, else one thread.
// Returns the state before.
i32 exchangeSignalState(DISPATCHER_HEADER& header, i32 state);

}  // namespace ntoshost
