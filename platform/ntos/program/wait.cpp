// Events, mutexes and waits: states under one lock, and one condition that all waiters share.

#include "ntos/wait.h"

#include "ntos/event.h"
#include "ntos/fastMutex.h"
#include "ntos/mutex.h"
#include "ntos/status.h"
#include "system.h"

namespace {

constexpr i64 kUnitsPerMillisecond = 10'000;

class tStatesGuard {
 public:
  tStatesGuard() { ntosprogram::lockStates(); }
  ~tStatesGuard() { ntosprogram::unlockStates(); }
  tStatesGuard(tStatesGuard const&) = delete;
  tStatesGuard& operator=(tStatesGuard const&) = delete;
};

KTHREAD* currentThread() {
  return reinterpret_cast<KTHREAD*>(ntosprogram::getThreadId());
}

// Takes what lets this thread go on, and returns whether it does.
bool tryTake(DISPATCHER_HEADER& header) {
  bool const isMutex = header.Type == MutantObject;
  auto& mutex = reinterpret_cast<KMUTEX&>(header);
  bool const isOwner = isMutex && mutex.OwnerThread == currentThread();
  if (header.SignalState <= 0 && !isOwner) return false;
  if (header.Type != EventNotificationObject) --header.SignalState;
  if (isMutex) mutex.OwnerThread = currentThread();
  return true;
}

// The longest wait in milliseconds, rounded up. A time above 0 is a point in time.
u32 millisecondsOf(LARGE_INTEGER const* timeout) {
  if (timeout == nullptr) return ntosprogram::kForever;
  i64 const given = timeout->QuadPart;
  i64 const units = given > 0 ? given - ntosprogram::getSystemTime() : -given;
  if (units <= 0) return 0;
  i64 const milliseconds = (units + kUnitsPerMillisecond - 1) / kUnitsPerMillisecond;
  return milliseconds < ntosprogram::kForever ? static_cast<u32>(milliseconds)
                                              : ntosprogram::kForever - 1;
}

i32 setState(KEVENT& event, i32 state) {
  tStatesGuard const guard;
  i32 const former = event.Header.SignalState;
  event.Header.SignalState = state;
  if (state > 0) ntosprogram::announceChange();
  return former;
}

}  // namespace

void KeInitializeEvent(KEVENT* event, EVENT_TYPE type, BOOLEAN state) {
  event->Header = {};
  event->Header.Type =
      type == NotificationEvent ? EventNotificationObject : EventSynchronizationObject;
  event->Header.SignalState = state;
}

i32 KeSetEvent(KEVENT* event, i32, BOOLEAN) {
  return setState(*event, 1);
}

void KeClearEvent(KEVENT* event) {
  setState(*event, 0);
}

i32 KeResetEvent(KEVENT* event) {
  return setState(*event, 0);
}

void KeInitializeMutex(KMUTEX* mutex, u32) {
  *mutex = {};
  mutex->Header.Type = MutantObject;
  mutex->Header.SignalState = 1;
}

i32 KeReleaseMutex(KMUTEX* mutex, BOOLEAN) {
  tStatesGuard const guard;
  i32 const former = mutex->Header.SignalState++;
  if (mutex->Header.SignalState > 0) {
    mutex->OwnerThread = nullptr;
    ntosprogram::announceChange();
  }
  return former;
}

void ExAcquireFastMutex(FAST_MUTEX* mutex) {
  tStatesGuard const guard;
  while (mutex->Count <= 0) ntosprogram::awaitChange(ntosprogram::kForever);
  mutex->Count = 0;
  mutex->Owner = currentThread();
}

void ExReleaseFastMutex(FAST_MUTEX* mutex) {
  tStatesGuard const guard;
  mutex->Owner = nullptr;
  mutex->Count = 1;
  ntosprogram::announceChange();
}

NTSTATUS KeWaitForSingleObject(void* object, KWAIT_REASON, KPROCESSOR_MODE, BOOLEAN,
                               LARGE_INTEGER* timeout) {
  auto& header = *static_cast<DISPATCHER_HEADER*>(object);
  u32 const limit = millisecondsOf(timeout);
  u64 const start = ntosprogram::getUptime();
  tStatesGuard const guard;
  while (!tryTake(header)) {
    u64 const passed = ntosprogram::getUptime() - start;
    bool const isForever = limit == ntosprogram::kForever;
    if (!isForever && passed >= limit) return STATUS_TIMEOUT;
    ntosprogram::awaitChange(isForever ? limit : static_cast<u32>(limit - passed));
  }
  return STATUS_SUCCESS;
}
