#include "trace/tPatience.h"

#include "ntos/event.h"
#include "ntos/time.h"
#include "ntos/wait.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kMillisecondsPerSecond = 1000;
constexpr u32 kPause = 1;  // milliseconds

constinit u32 exhausted = 0;

u64 getCount() {
  return static_cast<u64>(KeQueryPerformanceCounter(nullptr).QuadPart);
}

}  // namespace

tPatience::tPatience() : lastCount(getCount()) {
}

// A count that goes back adds no time; what passes from there on counts.
u64 tPatience::getMilliseconds() const {
  LARGE_INTEGER countsPerSecond;
  u64 const now = static_cast<u64>(KeQueryPerformanceCounter(&countsPerSecond).QuadPart);
  if (now > lastCount) passedCounts += now - lastCount;
  lastCount = now;
  u64 const counted =
      passedCounts * kMillisecondsPerSecond / static_cast<u64>(countsPerSecond.QuadPart);
  return counted < waited ? waited : counted;
}

u32 tPatience::getRest() const {
  if (isExhausted()) return 0;
  u64 const passed = getMilliseconds();
  return passed < kMostPatience ? static_cast<u32>(kMostPatience - passed) : 0;
}

bool tPatience::hasPassed() const {
  return getMilliseconds() >= kMostPatience;
}

void tPatience::wait() const {
  pause();
  addWait(kPause);
}

// An event that nobody sets is a pause.
void tPatience::pause() {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  LARGE_INTEGER span;
  span.QuadPart = kPause * kTicksOfMillisecond;
  KeWaitForSingleObject(&never, Executive, KernelMode, 0, &span);
}

bool tPatience::isExhausted() {
  return __atomic_load_n(&exhausted, __ATOMIC_RELAXED) != 0;
}

void tPatience::setExhausted(bool isExhausted) {
  __atomic_store_n(&exhausted, isExhausted ? 1 : 0, __ATOMIC_RELAXED);
}

}  // namespace nOXDIAG100
