#pragma once

#include "ntos/types.h"

namespace ntoshost {

// A thread that is asked to be suspended, see ntoshost/thread.h.
struct SuspensionRequest {
  u64 callsLeft;  // until it is asked; 0: nobody wants that
  bool isPending;
};
extern constinit thread_local SuspensionRequest g_suspension
    __attribute__((tls_model("initial-exec")));

// Suspends the calling thread if it was asked to, and may be now.
void suspendIfAllowed();

// The same, at every moment from which on it may be.
inline void takeSuspension() {
  if (g_suspension.isPending) suspendIfAllowed();
}

// A call of the executive: a point of a schedule, at which the thread also may be asked. Nothing
// while it has a lock of the executive's own.
void countCall();

}  // namespace ntoshost
