#include "ntos/wait.h"

#include "irqlCheck.h"
#include "ntos/status.h"
#include "ntoshost/violation.h"
#include "wait/dispatcher.h"
#include "wait/parking.h"

namespace ntoshost {
namespace {

// Events and mutexes start with their header.
bool tryTake(DISPATCHER_HEADER& header) {
  if (header.Type == MutantObject) return tryTakeMutex(reinterpret_cast<KMUTEX&>(header));
  return tryTakeEvent(reinterpret_cast<KEVENT&>(header));
}

void requireSoundWait(DISPATCHER_HEADER const& header, Deadline const& deadline) {
  if (deadline.isNow()) {
    requireIrqlAtMost(DISPATCH_LEVEL, "KeWaitForSingleObject without waiting");
  } else {
    requireIrqlAtMost(APC_LEVEL, "KeWaitForSingleObject");
  }
  requireWaitable(header, "KeWaitForSingleObject");
}

bool waitFor(DISPATCHER_HEADER& header, Deadline const& deadline) {
  while (!tryTake(header)) {
    if (deadline.isNow()) return false;
    i32 const state = readSignalState(header);
    if (state <= 0 && !parkWhile(&header.SignalState, state, deadline)) return tryTake(header);
  }
  return true;
}

}  // namespace
}  // namespace ntoshost

NTSTATUS KeWaitForSingleObject(void* object, KWAIT_REASON, KPROCESSOR_MODE, BOOLEAN,
                               LARGE_INTEGER* timeout) {
  DISPATCHER_HEADER& header = *static_cast<DISPATCHER_HEADER*>(object);
  ntoshost::Deadline const deadline(timeout);
  ntoshost::requireSoundWait(header, deadline);
  return ntoshost::waitFor(header, deadline) ? STATUS_SUCCESS : STATUS_TIMEOUT;
}
