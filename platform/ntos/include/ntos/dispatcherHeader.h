#pragma once

#include "ntos/types.h"

// The head of every object that KeWaitForSingleObject accepts. Filled by the object's KeInitialize
// call and changed by the kernel only.
struct DISPATCHER_HEADER {
  u8 Type;  // a KOBJECTS value
  u8 Signalling;
  u8 Size;  // of the whole object, in 4-byte words
  u8 Reserved;
  i32 SignalState;  // above 0: a wait is satisfied
  LIST_ENTRY WaitListHead;
};
static_assert(sizeof(DISPATCHER_HEADER) == 24 && alignof(DISPATCHER_HEADER) == 8);
static_assert(offsetof(DISPATCHER_HEADER, Size) == 2);
static_assert(offsetof(DISPATCHER_HEADER, SignalState) == 4);
static_assert(offsetof(DISPATCHER_HEADER, WaitListHead) == 8);

// DISPATCHER_HEADER::Type
enum KOBJECTS : u8 {
  EventNotificationObject = 0,
  EventSynchronizationObject = 1,
  MutantObject = 2,
};
