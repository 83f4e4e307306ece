#include "trace/tPatience.h"

#include "ntos/event.h"
#include "ntos/time.h"
#include "ntos/wait.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kMillisecondsPerSecond = 1000;
constexpr i64 kBetweenLooks = -10'000;  // 1 ms, in units of 100 ns from now

constinit u32 exhausted = 0;

u64 getCount() {
  return static_cast<u64>(KeQueryPerformanceCounter(nullptr).QuadPart);
}

u64 getMillisecondsSince(u64 start) {
  LARGE_INTEGER countsPerSecond;
  u64 const now = static_cast<u64>(KeQueryPerformanceCounter(&countsPerSecond).QuadPart);
  return (now - start) * kMillisecondsPerSecond / static_cast<u64>(countsPerSecond.QuadPart);
}

}  // namespace

tPatience::tPatience() : start(getCount()) {
}

u32 tPatience::getRest() const {
  if (isExhausted()) return 0;
  u64 const passed = getMillisecondsSince(start);
  return passed < kMostPatience ? static_cast<u32>(kMostPatience - passed) : 0;
}

bool tPatience::hasPassed() const {
  return getMillisecondsSince(start) >= kMostPatience;
}

// An event that nobody sets is a pause.
void tPatience::pause() {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  LARGE_INTEGER span;
  span.QuadPart = kBetweenLooks;
  KeWaitForSingleObject(&never, Executive, KernelMode, 0, &span);
}

bool tPatience::isExhausted() {
  return __atomic_load_n(&exhausted, __ATOMIC_RELAXED) != 0;
}

void tPatience::setExhausted(bool isExhausted) {
  __atomic_store_n(&exhausted, isExhausted ? 1 : 0, __ATOMIC_RELAXED);
}

}  // namespace nOXDIAG100
