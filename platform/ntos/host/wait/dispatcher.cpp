#include "wait/dispatcher.h"

#include "ntoshost/violation.h"
#include "wait/parking.h"

namespace ntoshost {
namespace {

bool isSound(DISPATCHER_HEADER const& header, KOBJECTS type, size_t objectSize) {
  return header.Type == type && header.Size == objectSize / sizeof(u32);
}

bool isEvent(DISPATCHER_HEADER const& header) {
  return isSound(header, EventNotificationObject, sizeof(KEVENT)) ||
         isSound(header, EventSynchronizationObject, sizeof(KEVENT));
}

bool isMutex(DISPATCHER_HEADER const& header) {
  return isSound(header, MutantObject, sizeof(KMUTEX));
}

[[noreturn]] void rejectObject(DISPATCHER_HEADER const& header, char const* what,
                               char const* call) {
  violation("%s was given something at %p that is no initialised %s.", call,
            static_cast<void const*>(&header), what);
}

}  // namespace

void initializeHeader(DISPATCHER_HEADER& header, KOBJECTS type, size_t objectSize, i32 state) {
  header.Type = type;
  header.Signalling = 0;
  header.Size = static_cast<u8>(objectSize / sizeof(u32));
  header.Reserved = 0;
  header.WaitListHead = {&header.WaitListHead, &header.WaitListHead};
  __atomic_store_n(&header.SignalState, state, __ATOMIC_RELEASE);
}

void requireEvent(DISPATCHER_HEADER const& header, char const* call) {
  if (!isEvent(header)) rejectObject(header, "event", call);
}

void requireMutex(DISPATCHER_HEADER const& header, char const* call) {
  if (!isMutex(header)) rejectObject(header, "mutex", call);
}

void requireWaitable(DISPATCHER_HEADER const& header, char const* call) {
  if (!isEvent(header) && !isMutex(header)) rejectObject(header, "event or mutex", call);
}

i32 readSignalState(DISPATCHER_HEADER const& header) {
  return __atomic_load_n(&header.SignalState, __ATOMIC_ACQUIRE);
}

// The object may be gone once its state has changed.
i32 exchangeSignalState(DISPATCHER_HEADER& header, i32 state) {
  bool const wakesAll = header.Type == EventNotificationObject;
  i32 const before = __atomic_exchange_n(&header.SignalState, state, __ATOMIC_SEQ_CST);
  if (state > 0) (wakesAll ? wakeAllParked : wakeOneParked)(&header.SignalState);
  return before;
}

}  // namespace ntoshost
