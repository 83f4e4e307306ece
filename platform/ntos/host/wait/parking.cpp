#include "wait/parking.h"

#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "schedule/scheduledThread.h"

namespace ntoshost {
namespace {

// How many threads sleep, or are about to, on the words that share a slot. The objects themselves
// have no room for it.
constexpr size_t kSlots = 256;
constinit u32 g_sleepers[kSlots] = {};

u32& sleepersOn(i32 const* word) {
  constexpr u64 kGoldenRatio = 0x9E3779B97F4A7C15;
  return g_sleepers[reinterpret_cast<uintptr_t>(word) * kGoldenRatio >> 56];
}

bool sleepWhile(i32* word, i32 seen, Deadline const& deadline) {
  int const clock = deadline.isOnRealTimeClock() ? FUTEX_CLOCK_REALTIME : 0;
  long const result = syscall(SYS_futex, word, FUTEX_WAIT_BITSET_PRIVATE | clock, seen,
                              deadline.getTime(), nullptr, FUTEX_BITSET_MATCH_ANY);
  return result == 0 || errno != ETIMEDOUT;
}

void wake(i32* word, int count) {
  if (__atomic_load_n(&sleepersOn(word), __ATOMIC_SEQ_CST) == 0) return;
  syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count);
}

}  // namespace

bool parkWhile(i32* word, i32 seen, Deadline const& deadline) {
  if (g_scheduled != nullptr) return parkScheduled(word, seen, deadline);
  u32& sleepers = sleepersOn(word);
  __atomic_add_fetch(&sleepers, 1, __ATOMIC_SEQ_CST);
  bool const isInTime = sleepWhile(word, seen, deadline);
  __atomic_sub_fetch(&sleepers, 1, __ATOMIC_SEQ_CST);
  return isInTime;
}

void wakeOneParked(i32* word) {
  wake(word, 1);
}

void wakeAllParked(i32* word) {
  wake(word, INT_MAX);
}

}  // namespace ntoshost
