#include "ntos/event.h"

#include "irqlCheck.h"
#include "ntoshost/violation.h"
#include "wait/dispatcher.h"

namespace ntoshost {

bool tryTakeEvent(KEVENT& event) {
  DISPATCHER_HEADER& header = event.Header;
  if (header.Type == EventNotificationObject) return readSignalState(header) > 0;
  i32 expected = 1;
  return __atomic_compare_exchange_n(&header.SignalState, &expected, 0, false, __ATOMIC_SEQ_CST,
                                     __ATOMIC_RELAXED);
}

}  // namespace ntoshost

void KeInitializeEvent(KEVENT* event, EVENT_TYPE type, BOOLEAN state) {
  ntoshost::requireIrqlAtMost(HIGH_LEVEL, "KeInitializeEvent");
  KOBJECTS const object =
      type == NotificationEvent ? EventNotificationObject : EventSynchronizationObject;
  ntoshost::initializeHeader(event->Header, object, sizeof(KEVENT), state != 0 ? 1 : 0);
}

i32 KeSetEvent(KEVENT* event, i32, BOOLEAN wait) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "KeSetEvent");
  ntoshost::requireEvent(event->Header, "KeSetEvent");
  if (wait != 0)
    ntoshost::violation("KeSetEvent was asked to set and wait in one; this is not done.");
  return ntoshost::exchangeSignalState(event->Header, 1);
}

void KeClearEvent(KEVENT* event) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "KeClearEvent");
  ntoshost::requireEvent(event->Header, "KeClearEvent");
  ntoshost::exchangeSignalState(event->Header, 0);
}

i32 KeResetEvent(KEVENT* event) {
  ntoshost::requireIrqlAtMost(DISPATCH_LEVEL, "KeResetEvent");
  ntoshost::requireEvent(event->Header, "KeResetEvent");
  return ntoshost::exchangeSignalState(event->Header, 0);
}
