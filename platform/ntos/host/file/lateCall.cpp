#include "file/lateCall.h"

#include "currentThread.h"
#include "ntos/sync.h"
#include "ntoshost/files.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

constexpr i64 kTicksPerMillisecond = 10'000;

constinit u32 g_delay = 0;  // milliseconds

void wait(u32 milliseconds) {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  LARGE_INTEGER span;
  span.QuadPart = -i64{milliseconds} * kTicksPerMillisecond;
  KeWaitForSingleObject(&never, Executive, KernelMode, 0, &span);
}

}  // namespace

LateCall::LateCall(char const* call) {
  if (!areAllApcsDisabled()) return;
  violation("%s was called in a guarded region, where nothing tells the thread that it has ended.",
            call);
}

LateCall::~LateCall() {
  u32 const delay = __atomic_load_n(&g_delay, __ATOMIC_RELAXED);
  if (delay != 0) wait(delay);
}

void delayFileCalls(u32 milliseconds) {
  __atomic_store_n(&g_delay, milliseconds, __ATOMIC_RELAXED);
}

}  // namespace ntoshost
